#include "host/workbench/win/channels_dialog.h"

#include <commctrl.h>
#include <windowsx.h>

#include <algorithm>
#include <stdexcept>

#include "host/buses/bus_name.h"
#include "host/runtime/text.h"
#include "host/workbench/channel_texts.h"
#include "host/workbench/texts.h"
#include "host/workbench/win/window.h"
#include "sdk/pages.h"

namespace NWorkbench {
namespace {

enum ControlId : int {
  kList = 100,
  kAdd,
  kRemove,
  kTabs,
  kPane,
  kBusLabel,
  kBus,
  kTimingLabel,
  kTiming,
  kDatabasesLabel,
  kDatabases,
  kDevicesLabel,
  kDevices,
};
constexpr int kOwnPage[] = {kBusLabel, kBus, kTimingLabel, kTiming, kDatabasesLabel, kDatabases};

constexpr int kWidth = 640, kHeight = 534;  // of the inside, at 96 dpi

// 500 kbit/s with the sample point at 75 %: what the registers show where none are set.
constexpr NConfiguration::BitTiming kUsualTiming = {0x00, 0x2B};

// A dialog without controls, which are made when it opens.
struct Template {
  DLGTEMPLATE head;
  WORD menu = 0, windowClass = 0, title = 0;
};

}  // namespace

// The channel as pages see it.
class ChannelsDialog::Timing final : public NRuntime::Implements<NSdk::ICanChannelTiming> {
 public:
  NConfiguration::BitTiming value;
  bool isSet = false;

  HRESULT STDMETHODCALLTYPE GetTimingRegister0(std::uint8_t* register0) override {
    return NRuntime::HandOut(value.register0, register0);
  }
  HRESULT STDMETHODCALLTYPE GetTimingRegister1(std::uint8_t* register1) override {
    return NRuntime::HandOut(value.register1, register1);
  }
  HRESULT STDMETHODCALLTYPE SetTimingRegisters(std::uint8_t register0, std::uint8_t register1) override {
    value = {register0, register1};
    isSet = true;
    return S_OK;
  }
};

class ChannelsDialog::PageSite final : public NRuntime::Implements<NSdk::IPageSite> {
 public:
  explicit PageSite(HWND parent) : mParent(parent) {}

  HRESULT STDMETHODCALLTYPE GetParentWindow(void** window) override {
    return NRuntime::HandOut(static_cast<void*>(mParent), window);
  }
  // Pages are always applied, changed or not.
  HRESULT STDMETHODCALLTYPE PageChanged() override { return S_OK; }

 private:
  HWND mParent;
};

// Collects the pages that a module adds.
class ChannelsDialog::Pages final : public NRuntime::Implements<NSdk::IPageContainer> {
 public:
  HRESULT STDMETHODCALLTYPE AddPage(NSdk::IPage* page) override {
    if (!page) return E_POINTER;
    pages.emplace_back(page);
    return S_OK;
  }

  std::vector<NRuntime::ComPtr<NSdk::IPage>> pages;
};

ChannelsDialog::ChannelsDialog(Workbench& workbench)
    : mWorkbench(workbench), mDocument(workbench.Settings()) {}

ChannelsDialog::~ChannelsDialog() = default;

bool ChannelsDialog::Run(HWND owner) {
  Template form = {};
  form.head.style = WS_POPUP | WS_CAPTION | WS_SYSMENU | DS_MODALFRAME | DS_CENTER;
  form.head.dwExtendedStyle = WS_EX_CONTROLPARENT;
  return DialogBoxIndirectParamW(GetModuleHandleW(nullptr), &form.head, owner, Receive,
                                 reinterpret_cast<LPARAM>(this)) == IDOK;
}

INT_PTR CALLBACK ChannelsDialog::Receive(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrW(window, GWLP_USERDATA, lParam);
    reinterpret_cast<ChannelsDialog*>(lParam)->mWindow = window;
  }
  auto* const dialog = reinterpret_cast<ChannelsDialog*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (!dialog) return FALSE;
  try {
    return dialog->OnMessage(message, wParam, lParam);
  } catch (const std::exception& error) {
    dialog->Complain(error.what(), 0);
    return TRUE;
  }
}

INT_PTR ChannelsDialog::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG:
      OnInit();
      return FALSE;  // the focus is set
    case WM_COMMAND:
      OnCommand(LOWORD(wParam), HIWORD(wParam));
      return TRUE;
    case WM_NOTIFY:
      if (reinterpret_cast<NMHDR*>(lParam)->code == TCN_SELCHANGE) ChangeTab();
      return TRUE;
    case WM_DESTROY:
      for (const auto& page : mPages) page->Destroy();
      mPages.clear();
      return TRUE;
    default:
      return FALSE;
  }
}

void ChannelsDialog::OnInit() {
  RECT inside = {0, 0, Scaled(kWidth), Scaled(kHeight)};
  AdjustWindowRectEx(&inside, static_cast<DWORD>(GetWindowLongW(mWindow, GWL_STYLE)), FALSE, 0);
  const int width = inside.right - inside.left, height = inside.bottom - inside.top;
  RECT owner = {};
  GetWindowRect(GetParent(mWindow), &owner);
  const RECT work = WorkArea(GetParent(mWindow));
  const LONG left = std::min((owner.left + owner.right - width) / 2, work.right - width);
  const LONG top = std::min((owner.top + owner.bottom - height) / 2, work.bottom - height);
  SetWindowPos(mWindow, nullptr, std::max(left, work.left), std::max(top, work.top), width, height,
               SWP_NOZORDER);
  SetWindowTextW(mWindow, Text(TextId::ChannelsTitle));
  MakeControls();
  Arrange();
  MakePages();
  PutText(kDevices, DeviceLines(mDocument.devices));
  ShowList();
  ShowChannel(mDocument.channels.empty() ? -1 : 0);
  SetFocus(Control(kList));
}

void ChannelsDialog::MakeControls() {
  constexpr DWORD kLine = WS_TABSTOP | WS_BORDER | ES_AUTOHSCROLL;
  constexpr DWORD kLines = kLine | ES_MULTILINE | ES_WANTRETURN | ES_AUTOVSCROLL | WS_VSCROLL;
  const auto make = [](HWND parent, const wchar_t* windowClass, TextId text, DWORD style, int id) {
    return MakeControl(parent, windowClass, text == TextId::AppName ? L"" : Text(text), style, id);
  };
  const TextId none = TextId::AppName;
  const HWND all = mWindow;
  make(all, WC_LISTBOXW, none, WS_TABSTOP | WS_BORDER | WS_VSCROLL | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT,
       kList);
  make(all, WC_BUTTONW, TextId::ChannelsAdd, WS_TABSTOP, kAdd);
  make(all, WC_BUTTONW, TextId::ChannelsRemove, WS_TABSTOP, kRemove);
  // What is in front of the tabs comes before them.
  const HWND pane = make(all, WC_STATICW, none, WS_CLIPCHILDREN | WS_CLIPSIBLINGS, kPane);
  SetWindowLongW(pane, GWL_EXSTYLE, WS_EX_CONTROLPARENT);
  make(all, WC_TABCONTROLW, none, WS_TABSTOP | WS_CLIPSIBLINGS, kTabs);
  make(pane, WC_STATICW, TextId::ChannelsBus, 0, kBusLabel);
  make(pane, WC_EDITW, none, kLine, kBus);
  make(pane, WC_STATICW, TextId::ChannelsTiming, 0, kTimingLabel);
  make(pane, WC_EDITW, none, kLine, kTiming);
  make(pane, WC_STATICW, TextId::ChannelsDatabases, 0, kDatabasesLabel);
  make(pane, WC_EDITW, none, kLines, kDatabases);
  make(all, WC_STATICW, TextId::ChannelsDevices, 0, kDevicesLabel);
  make(all, WC_EDITW, none, kLines, kDevices);
  make(all, WC_BUTTONW, TextId::ButtonOk, WS_TABSTOP | BS_DEFPUSHBUTTON, IDOK);
  make(all, WC_BUTTONW, TextId::ButtonCancel, WS_TABSTOP, IDCANCEL);
}

void ChannelsDialog::Arrange() {
  struct Place {
    int id, left, top, width, height;
  };
  constexpr Place kPlaces[] = {
      {kList, 12, 12, 150, 296},       {kAdd, 12, 316, 80, 26},
      {kRemove, 96, 316, 66, 26},      {kTabs, 174, 12, 454, 330},
      {kBusLabel, 10, 8, 424, 17},  // in the pane, as what follows
      {kBus, 10, 27, 424, 24},         {kTimingLabel, 10, 61, 424, 17},
      {kTiming, 10, 80, 100, 24},      {kDatabasesLabel, 10, 114, 424, 17},
      {kDatabases, 10, 133, 424, 156}, {kDevicesLabel, 12, 354, 616, 17},
      {kDevices, 12, 373, 616, 108},   {IDOK, 448, 496, 86, 26},
      {IDCANCEL, 542, 496, 86, 26},
  };
  for (const Place& place : kPlaces) {
    MoveWindow(Control(place.id), Scaled(place.left), Scaled(place.top), Scaled(place.width),
               Scaled(place.height), FALSE);
  }
}

// A page that cannot be made is left out.
void ChannelsDialog::MakePages() {
  const auto addTab = [this](const std::wstring& title) {
    TCITEMW tab = {};
    tab.mask = TCIF_TEXT;
    tab.pszText = const_cast<wchar_t*>(title.c_str());
    TabCtrl_InsertItem(Control(kTabs), TabCtrl_GetItemCount(Control(kTabs)), &tab);
  };
  addTab(Text(TextId::ChannelsGeneral));
  mTiming = NRuntime::Make<Timing>();
  RECT area = {};
  GetWindowRect(Control(kTabs), &area);
  MapWindowPoints(nullptr, mWindow, reinterpret_cast<POINT*>(&area), 2);
  TabCtrl_AdjustRect(Control(kTabs), FALSE, &area);
  const int width = area.right - area.left, height = area.bottom - area.top;
  MoveWindow(Control(kPane), area.left, area.top, width, height, FALSE);
  mSite = NRuntime::Make<PageSite>(Control(kPane));
  const auto container = NRuntime::Make<Pages>();
  if (mWorkbench.Extensions()) mWorkbench.Extensions()->AddPages(container.Get());
  for (const auto& page : container->pages) {
    void* window = nullptr;
    if (FAILED(page->Create(mSite.Get())) || page->GetPageWindow(&window) != S_OK || !window) continue;
    NRuntime::ReceivedText caption;
    const auto captioned = NRuntime::Query<NSdk::IPageCaption>(page);
    if (captioned) captioned->GetPageCaption(caption.Out());
    addTab(caption.Text().empty() ? L"?" : caption.Text());
    mPages.push_back(page);
    SetWindowPos(static_cast<HWND>(window), HWND_TOP, 0, 0, width, height, SWP_HIDEWINDOW);
    page->Resize(width, height);
  }
}

HWND ChannelsDialog::Control(int id) const {
  const HWND control = GetDlgItem(mWindow, id);
  return control ? control : GetDlgItem(GetDlgItem(mWindow, kPane), id);
}

std::string ChannelsDialog::TextIn(int id) const { return NRuntime::ToUtf8(TextOf(Control(id))); }

void ChannelsDialog::PutText(int id, const std::string& text) const {
  SetWindowTextW(Control(id), NRuntime::ToWide(text).c_str());
}

void ChannelsDialog::ShowList() {
  ListBox_ResetContent(Control(kList));
  for (const auto& channel : mDocument.channels) {
    const std::string bus = channel.bus.substr(0, channel.bus.find(','));  // options take too much room
    const std::wstring text = L"CAN " + std::to_wstring(channel.number) + L"   " + NRuntime::ToWide(bus);
    ListBox_AddString(Control(kList), text.c_str());
  }
}

void ChannelsDialog::ShowChannel(int position) {
  mChannel = position;
  ListBox_SetCurSel(Control(kList), position);
  const bool isThere = position >= 0;
  const NConfiguration::Channel channel =
      isThere ? mDocument.channels[static_cast<std::size_t>(position)] : NConfiguration::Channel();
  PutText(kBus, channel.bus);
  PutText(kTiming, TimingText(channel.timing));
  PutText(kDatabases, PathLines(channel.databases));
  for (const int id : {kBus, kTiming, kDatabases, kTabs, kRemove}) EnableWindow(Control(id), isThere);
  ShowTab(mTab);
}

// What a page has changed is shown on the own one, and the other way round.
void ChannelsDialog::ChangeTab() {
  const int tab = TabCtrl_GetCurSel(Control(kTabs));
  TakePage();
  if (mTab == 0 && !TakeChannel()) {
    TabCtrl_SetCurSel(Control(kTabs), 0);
  } else {
    ShowTab(tab);
  }
}

void ChannelsDialog::ShowTab(int tab) {
  mTab = tab >= 0 && tab <= static_cast<int>(mPages.size()) ? tab : 0;
  TabCtrl_SetCurSel(Control(kTabs), mTab);
  for (const int id : kOwnPage) ShowWindow(Control(id), mTab == 0 ? SW_SHOW : SW_HIDE);
  for (std::size_t page = 0; page < mPages.size(); ++page) {
    void* window = nullptr;
    mPages[page]->GetPageWindow(&window);
    const bool shown = static_cast<int>(page) + 1 == mTab && mChannel >= 0;
    if (shown) {
      const auto timing = ParseTiming(TextIn(kTiming));
      mTiming->value = timing.value_or(kUsualTiming);
      mTiming->isSet = false;
      mPages[page]->SetTarget(mTiming.Get());
      mPages[page]->Show();
    }
    ShowWindow(static_cast<HWND>(window), shown ? SW_SHOW : SW_HIDE);
  }
}

// Of the page of the module that is shown.
void ChannelsDialog::TakePage() {
  if (mTab == 0 || mChannel < 0) return;
  const auto before = mTiming->value;
  mPages[static_cast<std::size_t>(mTab) - 1]->Apply();
  if (mTiming->isSet && (!(mTiming->value == before) || !TextIn(kTiming).empty())) {
    PutText(kTiming, TimingText(mTiming->value));
  }
}

bool ChannelsDialog::TakeChannel() {
  TakePage();
  if (mChannel < 0) return true;
  NConfiguration::Channel& channel = mDocument.channels[static_cast<std::size_t>(mChannel)];
  const std::wstring number = std::to_wstring(channel.number);
  const std::string bus = TextIn(kBus);
  try {
    NBuses::ParseBusName(bus);
  } catch (const std::runtime_error& error) {
    Complain(NRuntime::ToUtf8(Text(TextId::ChannelsBadBus, number, NRuntime::ToWide(error.what()))), kBus);
    return false;
  }
  try {
    channel.timing = ParseTiming(TextIn(kTiming));
  } catch (const std::runtime_error&) {
    Complain(NRuntime::ToUtf8(Text(TextId::ChannelsBadTiming, number)), kTiming);
    return false;
  }
  channel.bus = bus;
  channel.databases = ParsePathLines(TextIn(kDatabases));
  return true;
}

void ChannelsDialog::OnCommand(int id, int notification) {
  if (id == kList && notification == LBN_SELCHANGE) {
    const int chosen = ListBox_GetCurSel(Control(kList));
    if (TakeChannel()) {
      ShowList();
      ShowChannel(chosen);
    } else {
      ListBox_SetCurSel(Control(kList), mChannel);
    }
  }
  if (id == kAdd) AddChannel();
  if (id == kRemove) RemoveChannel();
  if (id == IDOK) Accept();
  if (id == IDCANCEL) EndDialog(mWindow, IDCANCEL);
}

void ChannelsDialog::AddChannel() {
  if (!TakeChannel()) return;
  std::uint32_t number = 1;
  const auto isTaken = [&](const NConfiguration::Channel& each) { return each.number == number; };
  auto& channels = mDocument.channels;
  while (std::any_of(channels.begin(), channels.end(), isTaken)) ++number;
  if (number > 255) return;
  channels.push_back(NewChannel(number));
  ShowList();
  ShowChannel(static_cast<int>(channels.size()) - 1);
  SetFocus(Control(kBus));
}

void ChannelsDialog::RemoveChannel() {
  if (mChannel < 0) return;
  mDocument.channels.erase(mDocument.channels.begin() + mChannel);
  ShowList();
  ShowChannel(std::min(mChannel, static_cast<int>(mDocument.channels.size()) - 1));
}

void ChannelsDialog::Accept() {
  if (!TakeChannel()) return;
  try {
    mDocument.devices = ParseDeviceLines(TextIn(kDevices), mDocument.channels);
  } catch (const std::runtime_error& error) {
    return Complain(error.what(), kDevices);
  }
  mWorkbench.Change(mDocument);
  EndDialog(mWindow, IDOK);
}

void ChannelsDialog::Complain(const std::string& text, int control) {
  if (control != 0 && control != kDevices && mTab != 0) ShowTab(0);
  Ask(mWindow, NRuntime::ToWide(text), MB_OK | MB_ICONEXCLAMATION);
  if (control != 0) SetFocus(Control(control));
}

}  // namespace NWorkbench
