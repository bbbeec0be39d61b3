// The pages and dialogs in which channels and blocks are set up.

#include <gmock/gmock.h>

#include "resources/resource_ids.h"
#include "sdk/class_ids.h"
#include "sdk/pages.h"
#include "tests/windows/window_host.h"

namespace NTest {
namespace {

// ---- the page for the bit rate

class Channel final : public NRuntime::Implements<NSdk::ICanChannelTiming> {
 public:
  HRESULT STDMETHODCALLTYPE GetTimingRegister0(std::uint8_t* value) override {
    return NRuntime::HandOut(register0, value);
  }
  HRESULT STDMETHODCALLTYPE GetTimingRegister1(std::uint8_t* value) override {
    return NRuntime::HandOut(register1, value);
  }
  HRESULT STDMETHODCALLTYPE SetTimingRegisters(std::uint8_t first, std::uint8_t second) override {
    register0 = first;
    register1 = second;
    return S_OK;
  }
  std::uint8_t register0 = 0;
  std::uint8_t register1 = 0;
};

class PageHost final : public NRuntime::Implements<NSdk::IPageSite, NSdk::IPageContainer> {
 public:
  HRESULT STDMETHODCALLTYPE GetParentWindow(void** window) override { return frame->GetParentWindow(window); }
  HRESULT STDMETHODCALLTYPE PageChanged() override {
    ++changes;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE AddPage(NSdk::IPage* added) override {
    page = added;
    return S_OK;
  }

  ComPtr<Frame> frame = NRuntime::Make<Frame>();
  ComPtr<NSdk::IPage> page;
  int changes = 0;
};

class BaudratePageTest : public testing::Test {
 protected:
  BaudratePageTest() {
    const auto plugIn = NRuntime::Query<NSdk::IPlugInExtensions>(host.module.Create(NSdk::kProgIdPlugIn));
    EXPECT_EQ(plugIn->AddPages(static_cast<NSdk::IPageSite*>(pages.Get())), S_OK);
    EXPECT_EQ(pages->page->Create(nullptr), E_FAIL);
    EXPECT_EQ(pages->page->Create(pages.Get()), S_OK);
    void* window = nullptr;
    EXPECT_EQ(pages->page->GetPageWindow(nullptr), S_FALSE);
    EXPECT_EQ(pages->page->GetPageWindow(&window), S_OK);
    dialog = static_cast<HWND>(window);
  }
  ~BaudratePageTest() override { pages->page->Destroy(); }

  void Show(std::uint8_t register0, std::uint8_t register1) {
    channel->register0 = register0;
    channel->register1 = register1;
    EXPECT_EQ(pages->page->SetTarget(channel.Get()), S_OK);
    EXPECT_EQ(pages->page->Show(), S_OK);
  }
  /// Text of the chosen button, "-" behind it where "Invalid" cannot be chosen.
  std::wstring Chosen() {
    std::wstring text;
    for (int button = IDC_BAUDRATE_10; button <= IDC_BAUDRATE_INVALID; ++button) {
      if (IsDlgButtonChecked(dialog, button)) text += TextOf(GetDlgItem(dialog, button));
    }
    return IsWindowEnabled(GetDlgItem(dialog, IDC_BAUDRATE_INVALID)) ? text : text + L"-";
  }
  std::wstring Registers() {
    wchar_t text[16];
    swprintf(text, 16, L"%02X %02X", channel->register0, channel->register1);
    return text;
  }

  WindowHost host;
  ComPtr<PageHost> pages = NRuntime::Make<PageHost>();
  ComPtr<Channel> channel = NRuntime::Make<Channel>();
  HWND dialog = nullptr;
};

TEST_F(BaudratePageTest, EveryRateIsShownAndChosen) {
  const struct {
    std::uint8_t register0, register1;
    const wchar_t* text;
  } rates[] = {{0x31, 0x1C, L"10 kBit/sec"},  {0x18, 0x1C, L"20 kBit/sec"},  {0x09, 0x1C, L"50 kBit/sec"},
               {0x03, 0x1C, L"125 kBit/sec"}, {0x01, 0x1C, L"250 kBit/sec"}, {0x00, 0x1C, L"500 kBit/sec"},
               {0x00, 0x16, L"800 kBit/sec"}, {0x00, 0x14, L"1000 kBit/sec"}};
  int button = IDC_BAUDRATE_10;
  for (const auto& rate : rates) {
    Show(rate.register0, rate.register1);
    EXPECT_EQ(Chosen(), rate.text + std::wstring(L"-"));
    const std::wstring registers = Registers();
    Show(0x00, 0x1D);
    EXPECT_EQ(Chosen(), L"Invalid CANopen Baudrate");
    pages->changes = 0;
    SendDlgItemMessageW(dialog, button++, BM_CLICK, 0, 0);
    EXPECT_GE(pages->changes, 1);
    EXPECT_EQ(pages->page->Apply(), S_OK);
    EXPECT_EQ(Registers(), registers);
    EXPECT_EQ(Chosen(), rate.text + std::wstring(L"-"));
  }
}

TEST_F(BaudratePageTest, AnotherTimingStaysAsItIs) {
  Show(0x00, 0x1D);
  channel->register0 = 0x55;
  EXPECT_EQ(pages->page->Apply(), S_OK);
  EXPECT_EQ(Registers(), L"00 1D");

  EXPECT_EQ(pages->page->SetTarget(nullptr), S_OK);
  EXPECT_EQ(pages->page->Show(), S_OK);
  SendDlgItemMessageW(dialog, IDC_BAUDRATE_500, BM_CLICK, 0, 0);
  EXPECT_EQ(pages->page->Apply(), S_OK);
  EXPECT_EQ(Registers(), L"00 1D");

  NRuntime::ReceivedText caption;
  EXPECT_EQ(NRuntime::Query<NSdk::IPageCaption>(pages->page)->GetPageCaption(caption.Out()), S_OK);
  EXPECT_EQ(caption.Text(), L"CANopen settings");
  EXPECT_EQ(pages->page->Resize(300, 400), S_OK);
  RECT client = {};
  GetClientRect(dialog, &client);
  EXPECT_EQ(client.right, 300);
  EXPECT_EQ(client.bottom, 400);
}

// ---- settings of a generator

class SettingsWindowTest : public testing::Test {
 protected:
  /// Opens the dialog; `drive` fills it in. What the block then holds, as "SvcDelay SDOTimeout SDOBlockSize
  /// CANChannel".
  std::wstring Edit(WindowHost& host, const std::function<void(HWND)>& drive, HRESULT expected) {
    const auto block = host.AddBlock(NSdk::kProgIdCANopenIG);
    WhileOpen(
        L"#32770",
        [&] {
          EXPECT_EQ(NRuntime::Query<NSdk::IUIEventsEx>(block)->Configure(host.frame->window), expected);
        },
        drive);
    const auto writer = NRuntime::Make<NRuntime::SettingsWriter>();
    NRuntime::Query<NSdk::IPersistentObject>(block)->Save(writer.Get());
    NRuntime::Query<NSdk::IPlugInBlock>(block)->Detach();
    std::wstring text;
    for (const wchar_t* key : {L"SvcDelay", L"SDOTimeout", L"SDOBlockSize", L"CANChannel"}) {
      text += (text.empty() ? L"" : L" ") + *writer->Written().Find(key);
    }
    return text;
  }
  static void Fill(HWND dialog, const wchar_t* pause, const wchar_t* timeout, const wchar_t* blockSize) {
    SetDlgItemTextW(dialog, IDC_SETTINGS_PAUSE, pause);
    SetDlgItemTextW(dialog, IDC_SETTINGS_SDO_TIMEOUT, timeout);
    SetDlgItemTextW(dialog, IDC_SETTINGS_SDO_BLOCK_SIZE, blockSize);
  }
  static void Press(HWND dialog, int button) { SendDlgItemMessageW(dialog, button, BM_CLICK, 0, 0); }
};

TEST_F(SettingsWindowTest, EveryBoundHasItsBalloon) {
  const struct {
    const wchar_t* pause;
    const wchar_t* timeout;
    const wchar_t* blockSize;
    int field;  // that is wrong
    const wchar_t* balloon;
  } rows[] = {
      {L"0", L"49", L"128", IDC_SETTINGS_PAUSE, L"Please enter a value in the range from 1 to 100000"},
      {L"100001", L"50", L"1", IDC_SETTINGS_PAUSE, L"Please enter a value in the range from 1 to 100000"},
      {L"1", L"49", L"0", IDC_SETTINGS_SDO_TIMEOUT, L"Please enter a value in the range from 50 to 1000000"},
      {L"1", L"1000001", L"1", IDC_SETTINGS_SDO_TIMEOUT,
       L"Please enter a value in the range from 50 to 1000000"},
      {L"1", L"50", L"0", IDC_SETTINGS_SDO_BLOCK_SIZE, L"Please enter a value in the range from 1 to 127"},
      {L"1", L"50", L"128", IDC_SETTINGS_SDO_BLOCK_SIZE, L"Please enter a value in the range from 1 to 127"},
  };
  WindowHost host(NSdk::kHostTesmond);
  const std::wstring kept = Edit(
      host,
      [&](HWND dialog) {
        for (const auto& row : rows) {
          Fill(dialog, row.pause, row.timeout, row.blockSize);
          EXPECT_EQ(TipText(), L"") << "typing takes the balloon away";
          Press(dialog, IDOK);
          EXPECT_EQ(TipText(), row.balloon);
          EXPECT_EQ(GetFocus(), GetDlgItem(dialog, row.field));
          EXPECT_TRUE(IsWindowVisible(dialog));
        }
        EXPECT_TRUE(PumpUntil([] { return TipText().empty(); }, 10000)) << "it goes by itself";
        Press(dialog, IDCANCEL);
      },
      S_FALSE);
  EXPECT_EQ(kept, L"10 5000 10 1");

  EXPECT_EQ(Edit(
                host,
                [&](HWND dialog) {
                  Fill(dialog, L"1", L"50", L"1");
                  Press(dialog, IDOK);
                },
                S_OK),
            L"1 50 1 1");
  EXPECT_EQ(Edit(
                host,
                [&](HWND dialog) {
                  Fill(dialog, L"100000", L"1000000", L"127");
                  Press(dialog, IDOK);
                },
                S_OK),
            L"100000 1000000 127 1");
}

TEST_F(SettingsWindowTest, TheChannelIsChosenWhereTheHostGivesNone) {
  WindowHost tesmond(NSdk::kHostTesmond);
  EXPECT_EQ(Edit(
                tesmond,
                [&](HWND dialog) {
                  const HWND list = GetDlgItem(dialog, IDC_SETTINGS_OUTPUT);
                  wchar_t row[64] = {};
                  SendMessageW(list, CB_GETLBTEXT, 1, reinterpret_cast<LPARAM>(row));
                  EXPECT_STREQ(row, L"CAN 2");
                  EXPECT_EQ(SendMessageW(list, CB_GETCURSEL, 0, 0), 0);
                  EXPECT_TRUE(IsWindowVisible(list));
                  SendMessageW(list, CB_SETCURSEL, static_cast<WPARAM>(-1), 0);
                  Press(dialog, IDOK);
                  EXPECT_TRUE(IsWindowVisible(dialog)) << "none is chosen";
                  SendMessageW(list, CB_SETCURSEL, 1, 0);
                  Press(dialog, IDOK);
                },
                S_OK),
            L"10 5000 10 2");
}

TEST_F(SettingsWindowTest, TheChannelIsHiddenWhereTheHostGivesIt) {
  WindowHost halvard(NSdk::kHostHalvard);
  EXPECT_EQ(Edit(
                halvard,
                [&](HWND dialog) {
                  EXPECT_FALSE(IsWindowVisible(GetDlgItem(dialog, IDC_SETTINGS_OUTPUT)));
                  EXPECT_FALSE(IsWindowVisible(GetDlgItem(dialog, IDC_SETTINGS_OUTPUT_LABEL)));
                  SendDlgItemMessageW(dialog, IDC_SETTINGS_OUTPUT, CB_SETCURSEL, 1, 0);
                  Press(dialog, IDOK);
                },
                S_OK),
            L"10 5000 10 1");
}

}  // namespace
}  // namespace NTest
