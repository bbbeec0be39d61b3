#include <gmock/gmock.h>

#include "host/runtime/can_message.h"
#include "resources/resource_ids.h"
#include "sdk/class_ids.h"
#include "sdk/scanner.h"
#include "tests/windows/window_host.h"

namespace NTest {
namespace {

// A scanner with its window.
class ScannerWindowTest : public testing::Test {
 protected:
  ScannerWindowTest() { EXPECT_EQ(events->CreateBlockWindow(host.frame.Get()), S_OK); }
  ~ScannerWindowTest() override { Remove(); }

  void Remove() { NRuntime::Query<NSdk::IPlugInBlock>(block)->Detach(); }
  HWND Window() {
    void* window = nullptr;
    events->GetBlockWindow(&window);
    return static_cast<HWND>(window);
  }
  HWND List() { return GetDlgItem(Window(), IDC_SCAN_NODES); }

  void Hear(std::uint32_t identifier, std::initializer_list<std::uint8_t> data) {
    NRuntime::SeenFrame seen;
    seen.channel = 1;
    seen.frame.identifier = identifier;
    seen.frame.flags = static_cast<std::uint32_t>(data.size());
    std::copy(data.begin(), data.end(), seen.frame.data);
    const auto message = NRuntime::Make<NRuntime::CanMessage>(seen);
    NRuntime::Query<NSdk::ICANEvents>(block)->OnCanMessage(message.Get());
  }

  /// Rows as "5|Operational|1|--| |? 3", the last number being the image.
  std::vector<std::wstring> Rows() {
    std::vector<std::wstring> rows;
    for (int row = 0; row < ListView_GetItemCount(List()); ++row) {
      LVITEMW item = {};
      item.mask = LVIF_IMAGE;
      item.iItem = row;
      SendMessageW(List(), LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
      rows.push_back(RowText(List(), row, NSdk::kScannerColumns) + L" " + std::to_wstring(item.iImage));
    }
    return rows;
  }
  bool RowsBecome(int count) {
    return PumpUntil([&] { return ListView_GetItemCount(List()) == count; });
  }

  NRuntime::Settings Saved() {
    const auto writer = NRuntime::Make<NRuntime::SettingsWriter>();
    EXPECT_EQ(NRuntime::Query<NSdk::IPersistentObject>(block)->Save(writer.Get()), S_OK);
    return writer->Written();
  }
  void Load(NRuntime::Settings settings) {
    const auto reader = NRuntime::Make<NRuntime::SettingsReader>(std::move(settings));
    EXPECT_EQ(NRuntime::Query<NSdk::IPersistentObject>(block)->Load(reader.Get()), S_OK);
  }
  /// Where the window is in its frame: "10 20 310 220".
  std::wstring Place() {
    RECT area = {};
    GetWindowRect(Window(), &area);
    MapWindowPoints(nullptr, host.frame->window, reinterpret_cast<POINT*>(&area), 2);
    std::wstring text;
    for (const LONG edge : {area.left, area.top, area.right, area.bottom}) {
      text += (text.empty() ? L"" : L" ") + std::to_wstring(edge);
    }
    return text;
  }

  WindowHost host;
  ComPtr<IUnknown> block = host.AddBlock(NSdk::kProgIdCANopenScanner);
  ComPtr<NSdk::IUIEventsEx> events = NRuntime::Query<NSdk::IUIEventsEx>(block);
};

TEST_F(ScannerWindowTest, ShowsTheTableInTheHostsNumberBase) {
  Hear(0x70A, {0x05});
  Hear(0x70B, {0x7F});
  Hear(0x08B, {0x00, 0x10, 0x01, 0, 0, 0, 0, 0});
  Hear(0x70C, {0x00});
  Hear(0x70D, {0x06});
  ASSERT_TRUE(RowsBecome(4));
  EXPECT_THAT(Rows(), testing::ElementsAre(L"10|Operational|1|--| |? 3", L"11|Preoperational|1|--| |? 6",
                                           L"12|Boot up|1|--| |? 1", L"13||1|--| |? 0"));
  const HIMAGELIST images = ListView_GetImageList(List(), LVSIL_SMALL);
  EXPECT_EQ(ImageList_GetImageCount(images), 8);

  host.application->numberBase = 16;
  host.application->settings->Tell(&NSdk::ISettingEvents::OnSettingsChanged);
  EXPECT_EQ(Rows()[0], L"0xa|Operational|1|--| |? 3");
}

TEST_F(ScannerWindowTest, HeadingsAndTheirOrder) {
  std::wstring headings;
  for (int column = 0; column < 6; ++column) {
    wchar_t text[64] = {};
    LVCOLUMNW heading = {};
    heading.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT;
    heading.pszText = text;
    heading.cchTextMax = 64;
    SendMessageW(List(), LVM_GETCOLUMNW, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&heading));
    const bool centred = (heading.fmt & LVCFMT_JUSTIFYMASK) == LVCFMT_CENTER;
    headings += std::wstring(text) + L" " + std::to_wstring(heading.cx) + (centred ? L"c " : L" ");
  }
  EXPECT_EQ(headings, L"ID 50 State 68 CAN 35 Name 60 Master 50c Priority 50c ");
  EXPECT_TRUE(ListView_GetExtendedListViewStyle(List()) & LVS_EX_FULLROWSELECT);
  EXPECT_EQ(TextOf(host.frame->window), L"CANopen Scanner");
}

TEST_F(ScannerWindowTest, TellsAboutTheRowUnderTheMouse) {
  Hear(0x70A, {0x05});
  Hear(0x08A, {0x00, 0x10, 0x41, 0, 0, 0, 0, 0});
  ASSERT_TRUE(RowsBecome(1));
  RECT row = {};
  ListView_GetItemRect(List(), 0, &row, LVIR_LABEL);
  SendMessageW(List(), WM_MOUSEHOVER, 0, MAKELPARAM(row.left + 2, row.top + 2));
  EXPECT_EQ(TipText(), L"Name: --\nProfile: --\nVendor Id: --\nSerial Number: --\nEMCY Generic Error");
  SendMessageW(List(), WM_MOUSEHOVER, 0, MAKELPARAM(row.left + 2, row.bottom + 20));
  EXPECT_EQ(TipText(), L"");
}

TEST_F(ScannerWindowTest, ClearEmptiesTheTable) {
  Hear(0x70A, {0x05});
  ASSERT_TRUE(RowsBecome(1));
  WhileOpen(
      L"#32768", [&] { SendMessageW(Window(), WM_CONTEXTMENU, reinterpret_cast<WPARAM>(List()), -1); },
      [&](HWND menu) {
        const auto items = reinterpret_cast<HMENU>(SendMessageW(menu, 0x1E1 /* MN_GETHMENU */, 0, 0));
        EXPECT_THAT(MenuTexts(items), testing::ElementsAre(L"Clear"));
        RECT headings = {}, opened = {};
        GetWindowRect(ListView_GetHeader(List()), &headings);
        GetWindowRect(menu, &opened);
        EXPECT_GE(opened.top, headings.bottom) << "no row has the focus";
        PostMessageW(Window(), WM_KEYDOWN, VK_DOWN, 0);
        PostMessageW(Window(), WM_KEYDOWN, VK_RETURN, 0);
      });
  EXPECT_TRUE(RowsBecome(0));
}

TEST_F(ScannerWindowTest, FollowsItsSizeAndIsFoundWhereItWas) {
  MoveWindow(Window(), 10, 20, 400, 300, TRUE);
  RECT client = {};
  RECT list = {};
  GetClientRect(Window(), &client);
  GetWindowRect(List(), &list);
  EXPECT_EQ(list.right - list.left, client.right);
  EXPECT_EQ(list.bottom - list.top, client.bottom);

  const NRuntime::Settings saved = Saved();
  ASSERT_TRUE(saved.Find(L"WindowPos"));
  EXPECT_EQ(*saved.Find(L"WindowPos"), L"10 20 410 320");
  EXPECT_EQ(events->DestroyBlockWindow(), S_OK);
  EXPECT_EQ(Window(), nullptr);
  EXPECT_EQ(*Saved().Find(L"WindowPos"), L"10 20 410 320");

  Load({{L"Name", L"My nodes"}, {L"WindowPos", L"30 40 230 240"}});
  NSdk::WindowSize preferred;
  NSdk::WindowSize minimum;
  EXPECT_EQ(events->GetSizes(&preferred, &minimum), S_OK);
  EXPECT_EQ(preferred.width, 200);
  EXPECT_EQ(preferred.height, 200);
  EXPECT_EQ(events->CreateBlockWindow(host.frame.Get()), S_OK);
  EXPECT_EQ(Place(), L"30 40 230 240");
  EXPECT_EQ(TextOf(host.frame->window), L"My nodes");
  Load({{L"WindowPos", L"-500 9000 -300 9200"}});
  RECT frame = {};
  GetClientRect(host.frame->window, &frame);
  EXPECT_EQ(Place(), L"0 " + std::to_wstring(frame.bottom - 200) + L" 200 " + std::to_wstring(frame.bottom));
  Load({{L"WindowPos", L"rubbish"}});
  EXPECT_EQ(Place(), L"0 " + std::to_wstring(frame.bottom - 200) + L" 200 " + std::to_wstring(frame.bottom));
}

TEST_F(ScannerWindowTest, WithoutAPlaceThereIsNoWindow) {
  EXPECT_EQ(events->DestroyBlockWindow(), S_OK);
  DestroyWindow(std::exchange(host.frame->window, nullptr));
  EXPECT_EQ(events->CreateBlockWindow(host.frame.Get()), S_FALSE);
  EXPECT_EQ(events->CreateBlockWindow(nullptr), E_POINTER);
  // The host's window goes first, and takes the block's along.
  const auto frame = NRuntime::Make<Frame>();
  EXPECT_EQ(events->CreateBlockWindow(frame.Get()), S_OK);
  DestroyWindow(std::exchange(frame->window, nullptr));
  EXPECT_EQ(Window(), nullptr);
  Hear(0x70A, {0x05});
  EXPECT_EQ(NRuntime::Query<NSdk::IScanner>(block)->NotifyObservers(), S_OK);
}

}  // namespace
}  // namespace NTest
