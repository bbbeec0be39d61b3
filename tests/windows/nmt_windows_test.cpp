#include <gmock/gmock.h>

#include "resources/resource_ids.h"
#include "sdk/class_ids.h"
#include "sdk/commands.h"
#include "tests/test_folder.h"
#include "tests/windows/window_host.h"

namespace NTest {
namespace {

using testing::ElementsAre;

// A host with a generator on channel 1, whose database describes nodes 5 and 3.
class NmtWindowTest : public testing::Test {
 protected:
  NmtWindowTest() { NRuntime::Query<NSdk::IRTClient>(block)->StartMeasurement(host.runtime.Get()); }
  ~NmtWindowTest() override {
    NRuntime::Query<NSdk::IRTClient>(block)->StopMeasurement();
    NRuntime::Query<NSdk::IPlugInBlock>(block)->Detach();
  }

  /// Opens the dialog by a command and closes it when `drive` is through.
  void WithDialog(const wchar_t* command, const std::function<void(HWND dialog, HWND list)>& drive) {
    WhileOpen(
        L"#32770", [&] { EXPECT_EQ(host.Command(command)->Execute(nullptr), S_OK); },
        [&](HWND dialog) { drive(dialog, GetDlgItem(dialog, IDC_NMT_NODES)); });
  }
  static void Press(HWND dialog, int button) { SendDlgItemMessageW(dialog, button, BM_CLICK, 0, 0); }
  static void SelectRows(HWND list, int count) {
    for (int row = 0; row < count; ++row) {
      ListView_SetItemState(list, row, LVIS_SELECTED, LVIS_SELECTED);
    }
  }
  bool SentBecome(std::size_t count) {
    return PumpUntil([&] { return host.runtime->sent.size() >= count; });
  }
  std::vector<std::wstring> TakeSent() {
    std::vector<std::wstring> texts;
    for (const SentFrame& frame : std::exchange(host.runtime->sent, {})) texts.push_back(frame.text);
    return texts;
  }

  const TestFolder folder;
  WindowHost host{NSdk::kHostHalvard,
                  WriteFile(folder / "net.dbc",
                            "VERSION \"\"\nBU_: Drive R_D\nBA_DEF_ BU_ \"CO_ID\" INT 0 127;\n"
                            "BA_ \"CO_ID\" BU_ Drive 5;\nBA_ \"CO_ID\" BU_ R_D 3;\n")};
  ComPtr<IUnknown> block = host.AddBlock(NSdk::kProgIdCANopenIG);
};

TEST_F(NmtWindowTest, ListsTheNodesOfTheDatabaseFirst) {
  WithDialog(L"CANopen.Stop.Nodes.1", [&](HWND dialog, HWND list) {
    EXPECT_EQ(TextOf(dialog), L"Send CANopen NMT command");
    EXPECT_NE(FindWindowExW(dialog, nullptr, WC_STATICW, L"CAN 1"), nullptr) << "the network";
    ASSERT_EQ(ListView_GetItemCount(list), 127);
    const wchar_t* const others[] = {L"1|(not defined in database)", L"2|(not defined in database)",
                                     L"4|(not defined in database)", L"6|(not defined in database)"};
    EXPECT_EQ(RowText(list, 0, 2), L"5|Drive");
    EXPECT_EQ(RowText(list, 1, 2), L"3|R_D");
    for (int row = 0; row < 4; ++row) EXPECT_EQ(RowText(list, row + 2, 2), others[row]);
    EXPECT_EQ(RowText(list, 126, 2), L"127|(not defined in database)");
    EXPECT_EQ(ListView_GetColumnWidth(list, 0), 90);
    EXPECT_EQ(ListView_GetColumnWidth(list, 1), 300);
    EXPECT_EQ(ListView_GetNextItem(list, -1, LVNI_SELECTED | LVNI_FOCUSED), 0);
    EXPECT_EQ(ListView_GetSelectedCount(list), 1u);
    EXPECT_EQ(GetFocus(), list);
    EXPECT_EQ(LOWORD(SendMessageW(dialog, DM_GETDEFID, 0, 0)), IDC_NMT_STOP);
  });
}

TEST_F(NmtWindowTest, SendsToTheSelectedNodesTenMillisecondsApart) {
  WithDialog(L"CANopen.Stop.Nodes.1", [&](HWND dialog, HWND list) {
    SelectRows(list, 3);
    Press(dialog, IDC_NMT_STOP);
    ASSERT_TRUE(SentBecome(3));
    for (std::size_t frame = 1; frame < 3; ++frame) {
      const auto distance = host.runtime->sent[frame].time - host.runtime->sent[frame - 1].time;
      EXPECT_GE(distance, std::chrono::milliseconds(8));
      EXPECT_LE(distance, std::chrono::milliseconds(500));
    }
    EXPECT_THAT(TakeSent(), ElementsAre(L"can1 000#0205", L"can1 000#0203", L"can1 000#0201"));
    PumpFor(50);
    ListView_SetItemState(list, -1, 0, LVIS_SELECTED);
    Press(dialog, IDC_NMT_STOP);
    ListView_SetItemState(list, 1, LVIS_SELECTED, LVIS_SELECTED);
    for (const int button : {IDC_NMT_OPERATIONAL, IDC_NMT_PREOPERATIONAL, IDC_NMT_RESET}) {
      Press(dialog, button);
    }
    EXPECT_TRUE(SentBecome(3));
    EXPECT_THAT(TakeSent(), ElementsAre(L"can1 000#0103", L"can1 000#8003", L"can1 000#8103"));
  });
}

TEST_F(NmtWindowTest, AnswersWhileItSendsAndCloses) {
  WithDialog(L"CANopen.Reset.Nodes.1", [&](HWND dialog, HWND list) {
    SelectRows(list, 127);
    const auto begin = std::chrono::steady_clock::now();
    Press(dialog, IDC_NMT_RESET);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(500));
    ASSERT_TRUE(SentBecome(3));
    EXPECT_LT(host.runtime->sent.size(), 100u);
    Press(dialog, IDCANCEL);
    EXPECT_TRUE(IsWindowVisible(dialog)) << "it waits for the last one";
    EXPECT_FALSE(IsWindowEnabled(GetDlgItem(dialog, IDC_NMT_STOP)));
    EXPECT_TRUE(PumpUntil([&] { return !IsWindowVisible(dialog); }, 20000));
    EXPECT_EQ(TakeSent().size(), 127u);
  });
  WithDialog(L"CANopen.Reset.Nodes.1", [&](HWND dialog, HWND list) {
    SelectRows(list, 127);
    Press(dialog, IDC_NMT_RESET);
    Press(dialog, IDCANCEL);
    Press(dialog, IDCANCEL);
    EXPECT_FALSE(IsWindowVisible(dialog));
  });
  PumpFor(50);
  EXPECT_LT(TakeSent().size(), 127u);
}

TEST_F(NmtWindowTest, ButtonsStayAtTheirCorners) {
  WithDialog(L"CANopen.Reset.Nodes.1", [&](HWND dialog, HWND list) {
    const auto place = [&](HWND control) {
      RECT area = {};
      GetWindowRect(control, &area);
      MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&area), 2);
      return area;
    };
    const RECT stop = place(GetDlgItem(dialog, IDC_NMT_STOP));
    const RECT help = place(GetDlgItem(dialog, IDHELP));
    const RECT nodes = place(list);
    RECT window = {};
    GetWindowRect(dialog, &window);
    MINMAXINFO limits = {};
    SendMessageW(dialog, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
    EXPECT_EQ(limits.ptMinTrackSize.x, window.right - window.left);
    EXPECT_EQ(limits.ptMinTrackSize.y, window.bottom - window.top);
    SetWindowPos(dialog, nullptr, 0, 0, window.right - window.left + 100, window.bottom - window.top + 50,
                 SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_EQ(place(GetDlgItem(dialog, IDC_NMT_STOP)).left, stop.left + 100);
    EXPECT_EQ(place(GetDlgItem(dialog, IDC_NMT_STOP)).top, stop.top);
    EXPECT_EQ(place(GetDlgItem(dialog, IDHELP)).top, help.top + 50);
    EXPECT_EQ(place(list).right, nodes.right + 100);
    EXPECT_EQ(place(list).bottom, nodes.bottom + 50);
  });
}

TEST_F(NmtWindowTest, MenusOfTheToolbar) {
  const auto dropDown = [&](const wchar_t* name) {
    return NRuntime::Query<NSdk::IDropDownCommand>(host.Command(name));
  };
  EXPECT_FALSE(dropDown(L"CANopen.Stop.Nodes.1"));
  EXPECT_FALSE(dropDown(L"Tool.Quillon"));
  void* handle = nullptr;

  const auto all = dropDown(L"CANopen.Stop.All.1");
  ASSERT_TRUE(all);
  ASSERT_EQ(all->GetMenu(500, 599, &handle), S_OK);
  auto* menu = static_cast<HMENU>(handle);
  EXPECT_THAT(MenuTexts(menu), ElementsAre(L"&All nodes", L"&Other nodes..."));
  EXPECT_EQ(GetMenuItemID(menu, 1), 501u);
  DestroyMenu(menu);
  EXPECT_EQ(all->ExecuteItem(500, nullptr), S_OK);
  EXPECT_EQ(all->ExecuteItem(502, nullptr), E_INVALIDARG);

  const auto networks = dropDown(L"CANopen.NetworkManagement");
  ASSERT_EQ(networks->GetMenu(100, 116, &handle), S_OK);
  menu = static_cast<HMENU>(handle);
  EXPECT_THAT(MenuTexts(menu),
              ElementsAre(L"Send CANopen NMT Operational", L"Send CANopen NMT Preoperational",
                          L"Send CANopen NMT Stop", L"Send CANopen NMT Reset"));
  const HMENU stop = GetSubMenu(menu, 2);
  EXPECT_EQ(GetMenuItemCount(stop), 1) << "network 2 cannot be reached";
  EXPECT_THAT(MenuTexts(GetSubMenu(stop, 0)),
              ElementsAre(L"&All nodes", L"&Nodes...", L"", L"Drive (ID 5)", L"R_D (ID 3)"));
  EXPECT_EQ(networks->ExecuteItem(GetMenuItemID(GetSubMenu(stop, 0), 4), nullptr), S_OK);
  DestroyMenu(menu);
  EXPECT_EQ(networks->ExecuteItem(99, nullptr), E_INVALIDARG);
  EXPECT_THAT(TakeSent(), ElementsAre(L"can1 000#0200", L"can1 000#0203"));

  NRuntime::Query<NSdk::IRTClient>(block)->StopMeasurement();
  EXPECT_EQ(networks->GetMenu(100, 199, &handle), S_FALSE);
}

TEST_F(NmtWindowTest, AHostWithoutDialogsGetsAMessageBox) {
  WhileOpen(
      L"#32770", [&] { EXPECT_EQ(host.Command(L"CANopen.Stop.All.2")->Execute(nullptr), S_OK); },
      [&](HWND box) {
        EXPECT_EQ(TextOf(box), L"Ostrel");
        EXPECT_THAT(TextOf(GetDlgItem(box, 0xFFFF)),
                    testing::StartsWith(L"CANopen NMT message cannot be transmitted because the network"));
      });
  EXPECT_TRUE(TakeSent().empty());
}

}  // namespace
}  // namespace NTest
