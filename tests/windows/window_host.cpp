#include "tests/windows/window_host.h"

#include "host/runtime/can_message.h"

namespace NTest {

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
