#include "tests/windows/window_host.h"

#include "host/runtime/can_message.h"

namespace NTest {

// ---- windows

void PumpFor(int duration_ms) {
  PumpUntil([] { return false; }, duration_ms);
}

bool PumpUntil(const std::function<bool()>& condition, int timeout_ms) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout_ms);
  while (!condition()) {
    if (std::chrono::steady_clock::now() >= end) return false;
    MsgWaitForMultipleObjects(0, nullptr, FALSE, 5, QS_ALLINPUT);
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
  }
  return true;
}

namespace {

struct Search {
  std::wstring className;
  HWND found = nullptr;
};

BOOL CALLBACK Visit(HWND window, LPARAM lng) {
  auto& search = *reinterpret_cast<Search*>(lng);
  wchar_t name[64] = {};
  GetClassNameW(window, name, 64);
  if (name != search.className || !IsWindowVisible(window)) return TRUE;
  search.found = window;
  return FALSE;
}

struct Driver {
  std::wstring className;
  std::function<void(HWND)> drive;
  int ticks = 0;  // since it was found
};
Driver* gDriver = nullptr;

// A menu takes its keys when `drive` has returned: it is given a while for them.
void CALLBACK Drive(HWND, UINT, UINT_PTR, DWORD) {
  constexpr int kMenuTicks = 200;
  const bool menu = gDriver->className == L"#32768";
  if (gDriver->ticks > 0) {
    if (menu && ++gDriver->ticks > kMenuTicks) EndMenu();
    return;
  }
  const HWND window = FindShown(gDriver->className.c_str());
  if (!window) return;
  gDriver->ticks = 1;
  gDriver->drive(window);
  if (!menu && IsWindowVisible(window)) EndDialog(window, IDCANCEL);
}

}  // namespace

HWND FindShown(const wchar_t* className) {
  Search search = {className};
  EnumThreadWindows(GetCurrentThreadId(), Visit, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

void WhileOpen(const wchar_t* className, const std::function<void()>& open,
               const std::function<void(HWND)>& drive) {
  Driver driver = {className, drive, 0};
  gDriver = &driver;
  const UINT_PTR timer = SetTimer(nullptr, 0, 10, Drive);
  open();
  KillTimer(nullptr, timer);
  gDriver = nullptr;
  if (driver.ticks == 0) throw std::runtime_error("nothing was opened");
}

std::wstring TextOf(HWND window) {
  wchar_t text[512] = {};
  GetWindowTextW(window, text, 512);
  return text;
}

std::wstring TipText() {
  const HWND tip = FindShown(TOOLTIPS_CLASSW);
  if (!tip) return {};
  wchar_t text[1024] = {};
  TTTOOLINFOW tool = {};
  tool.cbSize = TTTOOLINFOW_V1_SIZE;
  tool.hwnd = GetWindow(tip, GW_OWNER);
  tool.uId = reinterpret_cast<UINT_PTR>(tool.hwnd);
  tool.lpszText = text;
  SendMessageW(tip, TTM_GETTEXTW, 1024, reinterpret_cast<LPARAM>(&tool));
  return text;
}

std::wstring RowText(HWND list, int row, int columns) {
  std::wstring texts;
  for (int column = 0; column < columns; ++column) {
    wchar_t text[256] = {};
    LVITEMW item = {};
    item.iSubItem = column;
    item.pszText = text;
    item.cchTextMax = 256;
    SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
    texts += (column == 0 ? L"" : L"|") + std::wstring(text);
  }
  return texts;
}

std::vector<std::wstring> MenuTexts(HMENU menu) {
  std::vector<std::wstring> texts;
  for (int position = 0; position < GetMenuItemCount(menu); ++position) {
    wchar_t text[256] = {};
    GetMenuStringW(menu, static_cast<UINT>(position), text, 256, MF_BYPOSITION);
    texts.emplace_back(text);
  }
  return texts;
}

// ---- a measurement

namespace {

class StillTimer final : public NRuntime::Implements<NSdk::ITimer> {
 public:
  HRESULT STDMETHODCALLTYPE Stop() override { return S_OK; }
  HRESULT STDMETHODCALLTYPE Start(std::uint32_t, std::uint32_t) override { return S_OK; }
};

class Output final : public NRuntime::Implements<NSdk::ICANOutput> {
 public:
  Output(StillRuntime& runtime, std::uint32_t channel) : mRuntime(&runtime), mChannel(channel) {}
  HRESULT STDMETHODCALLTYPE Transmit(const NSdk::CanFrame*) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE TransmitMessage(NSdk::ICANMessage* message) override {
    NSdk::CanFrame frame;
    if (!NRuntime::ReadMessage(*message, frame)) return E_INVALIDARG;
    wchar_t text[64];
    swprintf(text, 64, L"can%u %03X#", static_cast<unsigned>(mChannel),
             static_cast<unsigned>(frame.identifier));
    std::wstring line = text;
    for (unsigned i = 0; i < (frame.flags & NSdk::kFrameDlcMask); ++i) {
      swprintf(text, 64, L"%02X", frame.data[i]);
      line += text;
    }
    mRuntime->sent.push_back({line, std::chrono::steady_clock::now()});
    return S_OK;
  }

 private:
  ComPtr<StillRuntime> mRuntime;
  std::uint32_t mChannel;
};

}  // namespace

HRESULT StillRuntime::CreateTimer(NSdk::ITimerSink*, NSdk::ITimer** timer) {
  return ComPtr<NSdk::ITimer>(NRuntime::Make<StillTimer>().Get()).MoveTo(timer);
}

HRESULT StillRuntime::GetCanOutput(std::uint32_t channel, NSdk::ICANOutput** output) {
  return ComPtr<NSdk::ICANOutput>(NRuntime::Make<Output>(*this, channel).Get()).MoveTo(output);
}

HRESULT StillRuntime::GetTime(std::int64_t* time_ns) { return NRuntime::HandOut(std::int64_t{0}, time_ns); }

// ---- the application

HostApplication::HostApplication(NSdk::HostVariant variant, NRuntime::ConfigurationData configuration)
    : mVariant(variant), mConfiguration(NRuntime::Make<NRuntime::Configuration>(std::move(configuration))) {}

HRESULT HostApplication::GetLanguage(std::uint32_t* language) {
  return NRuntime::HandOut(std::uint32_t{1}, language);
}
HRESULT HostApplication::GetNumberBase(std::uint32_t* base) { return NRuntime::HandOut(numberBase, base); }
HRESULT HostApplication::GetVariant(std::uint32_t* variant) {
  return NRuntime::HandOut(std::uint32_t{mVariant}, variant);
}
HRESULT HostApplication::IsMeasuring(std::uint32_t* measuring) {
  return NRuntime::HandOut(std::uint32_t{1}, measuring);
}

HRESULT HostApplication::GetService(REFIID iid, void** service) {
  if (SUCCEEDED(commands->QueryInterface(iid, service))) return S_OK;
  return mConfiguration->QueryInterface(iid, service);
}

HRESULT HostApplication::FindEventSource(REFIID sinkIid, NSdk::IEventSource** source) {
  if (sinkIid != NSdk::IidOf<NSdk::ISettingEvents>()) return E_NOINTERFACE;
  return ComPtr<NSdk::IEventSource>(settings.Get()).MoveTo(source);
}

Frame::Frame() {
  window = CreateWindowExW(WS_EX_CONTROLPARENT, L"STATIC", L"", WS_OVERLAPPEDWINDOW, 50, 50, 700, 500,
                           nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
  ShowWindow(window, SW_SHOW);
}

Frame::~Frame() { DestroyWindow(window); }

HRESULT Frame::GetParentWindow(void** parent) {
  if (!window) return E_FAIL;
  *parent = window;
  return S_OK;
}

HRESULT Frame::SetCaption(const wchar_t* caption) {
  SetWindowTextW(window, caption);
  return S_OK;
}

namespace {

NRuntime::ConfigurationData Configuration(const std::filesystem::path& database) {
  NRuntime::ConfigurationData data;
  data.canChannels = {1, 2};
  if (!database.empty()) data.databases.push_back({database, 1});
  return data;
}

class Site final : public NRuntime::Implements<NSdk::IBlockSite> {
 public:
  explicit Site(HostApplication& application) : mApplication(&application) {}
  HRESULT STDMETHODCALLTYPE GetApplication(NSdk::IHostApplication** application) override {
    return ComPtr<NSdk::IHostApplication>(mApplication.Get()).MoveTo(application);
  }
  HRESULT STDMETHODCALLTYPE BlockChanged() override { return S_OK; }

 private:
  ComPtr<HostApplication> mApplication;
};

}  // namespace

WindowHost::WindowHost(NSdk::HostVariant variant, const std::filesystem::path& database)
    : application(NRuntime::Make<HostApplication>(variant, Configuration(database))) {
  module.Initialise(*application);
}

ComPtr<IUnknown> WindowHost::AddBlock(const char* progId) {
  ComPtr<IUnknown> block = module.Create(progId);
  const auto site = NRuntime::Make<Site>(*application);
  NRuntime::Query<NSdk::IPlugInBlock>(block)->Attach(site.Get());
  return block;
}

}  // namespace NTest
