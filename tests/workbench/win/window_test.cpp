// The program's windows as its user drives them.

#include <windows.h>

#include <commctrl.h>

#include <gmock/gmock.h>

#include "host/workbench/win/command_ids.h"
#include "tests/workbench/win/program.h"

namespace {

using namespace NWorkbenchTest;
using namespace NWorkbench;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

constexpr char kVirtual[] = R"({"number": 1, "bus": "virtual,bitrate=125000"})";
constexpr char kDevice[] = R"(, "devices": [{"channel": 1, "node": 5}, {"channel": 1, "node": 9}])";
constexpr char kScanners[] =
    R"(, "blocks": [{"progId": "HarlowPlugIn.CANopenScanner", "settings": {"Name": "First"},
                     "window": {"x": 0, "y": 0, "width": 400, "height": 200}},
                    {"progId": "HarlowPlugIn.CANopenScanner", "settings": {"Name": "Second"}},
                    {"progId": "HarlowPlugIn.CANopenIG", "settings": {"Name": "Sender", "CANChannel": "1"}}])";
constexpr int kInsertMenu = 1;

TEST(Workbench, InsertsMeasuresSavesAndOpensAgain) {
  const auto file = WriteConfiguration("whole.json", kVirtual, kDevice);
  {
    Program program(file);
    ASSERT_TRUE(program.CommandOfMenu(kInsertMenu, L"Scanner"));
    EXPECT_TRUE(program.Wait([&] { return program.SetupLines().size() == 4; }));
    program.Command(kMeasureStart);
    EXPECT_TRUE(program.Wait([&] { return program.TraceRows() == 2; })) << "both devices boot";
    EXPECT_THAT(program.Status(0), HasSubstr(L"Measuring"));
    EXPECT_TRUE(program.Wait([&] { return program.Status(2).find(L"CAN 1: ") == 0; }))
        << "the load of the bus";
    program.Command(kMeasureStop);
    EXPECT_TRUE(program.Wait([&] { return program.Status(0) == L"Stopped"; }));
    program.Command(kFileSave);
    EXPECT_THAT(program.Messages(), testing::IsEmpty());
  }
  EXPECT_THAT(ReadFile(file), HasSubstr("HarlowPlugIn.CANopenScanner"));
  Program again(file);
  EXPECT_TRUE(again.Wait([&] { return again.SetupLines().size() == 4; }));
}

TEST(Workbench, SetupsAreThoseOfTheVariantAndTheLanguage) {
  Program program(WriteConfiguration("variants.json", kVirtual, kScanners));
  EXPECT_THAT(program.SetupLines(), testing::ElementsAre(L"Simulation setup", L"Network CAN 1", L"Sender",
                                                         L"Measurement setup", L"First", L"Second"));
  program.Command(kOptionsTesmond);
  EXPECT_TRUE(program.Wait([&] { return program.SetupLines().front() == L"Measurement setup"; }));
  EXPECT_THAT(program.SetupLines(),
              testing::ElementsAre(L"Measurement setup", L"Send line", L"Sender", L"First", L"Second"));
  program.Command(kOptionsGerman);
  EXPECT_TRUE(program.Wait([&] { return program.SetupLines().front() == L"Messaufbau"; }));
  EXPECT_EQ(program.SetupLines().size(), 5u);
  EXPECT_NE(program.Child(L"OstrelBlock"), nullptr) << "its window is open again";
  const Answers no(IDNO);
  SendMessageW(program.Main(), WM_CLOSE, 0, 0);
  EXPECT_TRUE(program.IsClosed());
}

RECT PlaceInside(HWND window) {
  RECT place = {};
  GetWindowRect(window, &place);
  MapWindowPoints(nullptr, GetParent(window), reinterpret_cast<POINT*>(&place), 2);
  return place;
}

TEST(Workbench, WindowsAndIconsAreAsTheyWereSaved) {
  const auto file = WriteConfiguration("places.json", kVirtual);
  constexpr RECT kPlace = {30, 40, 350, 340};
  const auto heightOfButtons = [](const Program& program) {
    return HIWORD(SendMessageW(program.Child(TOOLBARCLASSNAMEW), TB_GETBUTTONSIZE, 0, 0));
  };
  {
    Program program(file);
    MoveWindow(program.Child(L"OstrelSetup"), kPlace.left, kPlace.top, kPlace.right - kPlace.left,
               kPlace.bottom - kPlace.top, TRUE);
    ShowWindow(program.Child(L"OstrelMessages"), SW_MINIMIZE);
    SendMessageW(program.Child(L"OstrelTrace"), WM_CLOSE, 0, 0);
    program.Command(kOptionsLargeIcons);
    program.Command(kFileSave);
  }
  {
    Program program(file);
    const RECT place = PlaceInside(program.Child(L"OstrelSetup"));
    EXPECT_TRUE(EqualRect(&place, &kPlace));
    EXPECT_TRUE(IsIconic(program.Child(L"OstrelMessages")));
    EXPECT_FALSE(IsWindowVisible(program.Child(L"OstrelTrace")));
    EXPECT_GE(heightOfButtons(program), 32);
    program.Command(kWindowTrace);
    EXPECT_TRUE(IsWindowVisible(program.Child(L"OstrelTrace")));
    ShowWindow(program.Child(L"OstrelTrace"), SW_MAXIMIZE);
    program.Command(kOptionsLargeIcons);
    EXPECT_TRUE(program.Wait([&] { return heightOfButtons(program) < 32; }));
    program.Command(kFileSave);
  }
  Program program(file);
  EXPECT_TRUE(IsZoomed(program.Child(L"OstrelTrace")));
}

// Through the button's menu, the cascade of the networks and that of their nodes, by the keyboard.
TEST(Workbench, CommandsWithADropDownHangUnderTheirButtons) {
  Program program(WriteConfiguration("drops.json", kVirtual, R"(, "blocks": [
      {"progId": "HarlowPlugIn.CANopenIG", "settings": {"Name": "Sender", "CANChannel": "1"}}])"));
  program.Command(kMeasureStart);
  ASSERT_TRUE(program.Wait([&] { return program.Status(0).find(L"Measuring") == 0; }));
  const HWND bar = program.Child(TOOLBARCLASSNAMEW);
  std::vector<POINT> places;
  for (int position = 0; position < SendMessageW(bar, TB_BUTTONCOUNT, 0, 0); ++position) {
    TBBUTTON button = {};
    RECT area = {};
    SendMessageW(bar, TB_GETBUTTON, static_cast<WPARAM>(position), reinterpret_cast<LPARAM>(&button));
    SendMessageW(bar, TB_GETITEMRECT, static_cast<WPARAM>(position), reinterpret_cast<LPARAM>(&area));
    if (button.fsStyle & BTNS_WHOLEDROPDOWN) places.push_back({area.left + 4, area.top + 4});
  }
  ASSERT_FALSE(places.empty());
  for (const WPARAM key : {VK_DOWN, VK_RIGHT, VK_RIGHT, VK_RETURN})  // Operational, CAN 1, all nodes
    PostMessageW(program.Main(), WM_KEYDOWN, key, 0);
  SendMessageW(bar, WM_LBUTTONDOWN, 0, MAKELPARAM(places[0].x, places[0].y));
  EXPECT_TRUE(program.Wait([&] { return program.TraceRows() == 1; }));
  const NWorkbench::TraceRow& row = program.Host().Trace().Row(0);
  EXPECT_EQ(row.identifier, 0u);
  EXPECT_EQ(row.data[0], 1);
  EXPECT_EQ(row.data[1], 0);
  program.Command(kOptionsHexadecimal);
  EXPECT_TRUE(program.Wait([&] { return program.Status(3) == L"Hex"; }))
      << "the windows are up to date again";
}

// The page of the module stands among those of a channel, and what it sets is the channel's.
TEST(Workbench, ChannelsHaveThePageOfTheModule) {
  constexpr int kRate500 = 240;
  const auto file = WriteConfiguration("page.json", kVirtual);
  Program program(file);
  std::thread user([] {
    HWND dialog = nullptr;
    for (int attempt = 0; !IsWindowVisible(dialog) && attempt < 500; ++attempt) {
      Sleep(20);
      dialog = FindWindowW(L"#32770", L"Channels and Devices");
    }
    const HWND tabs = FindWindowExW(dialog, nullptr, WC_TABCONTROLW, nullptr);
    EXPECT_EQ(TabCtrl_GetItemCount(tabs), 2);
    SendMessageW(tabs, TCM_SETCURFOCUS, 1, 0);
    HWND page = nullptr;
    for (HWND pane = nullptr; !page && (pane = FindWindowExW(dialog, pane, WC_STATICW, nullptr));)
      page = FindWindowExW(pane, nullptr, L"#32770", nullptr);
    EXPECT_TRUE(IsWindowVisible(page));
    RECT around = {}, inside = {};
    GetWindowRect(tabs, &around);
    GetWindowRect(page, &inside);
    EXPECT_TRUE(around.left < inside.left && around.top < inside.top && around.right > inside.right &&
                around.bottom > inside.bottom)
        << "it lies within the tabs";
    EXPECT_TRUE(IsWindowEnabled(GetDlgItem(page, kRate500)));
    SendMessageW(GetDlgItem(page, kRate500), BM_CLICK, 0, 0);
    SendMessageW(dialog, WM_COMMAND, IDOK, 0);
  });
  program.Command(kOptionsChannels);
  user.join();
  EXPECT_EQ(program.Host().Settings().channels.at(0).timing, (NConfiguration::BitTiming{0x00, 0x1C}));
}

TEST(Workbench, ChangesAreAskedFor) {
  const auto file = WriteConfiguration("changes.json", kVirtual);
  Program program(file);
  {
    Answers cancel(IDCANCEL);
    program.Command(kOptionsHexadecimal);
    SendMessageW(program.Main(), WM_CLOSE, 0, 0);
    EXPECT_FALSE(program.IsClosed());
    EXPECT_THAT(cancel.Texts(), HasSubstr(L"changes.json"));
  }
  Answers yes(IDYES);
  SendMessageW(program.Main(), WM_CLOSE, 0, 0);
  EXPECT_TRUE(program.IsClosed());
  EXPECT_THAT(ReadFile(file), HasSubstr("\"numberBase\": 16"));
}

}  // namespace
