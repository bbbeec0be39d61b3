#pragma once
// A host with a window for the module's windows: the module as it is built, driven through its interfaces and
// by window messages.

#include <windows.h>

#include <commctrl.h>

#include <chrono>
#include <string>
#include <vector>

#include "host/runtime/command_registry.h"
#include "host/runtime/configuration.h"
#include "host/runtime/event_source.h"
#include "host/runtime/module.h"
#include "host/runtime/persistence.h"
#include "sdk/blocks.h"
#include "sdk/runtime.h"
#include "sdk/views.h"
#include "tests/windows/window_driver.h"

namespace NTest {

using NRuntime::ComPtr;

// ---- the host

/// A sent frame as "can1 000#0205", and when it was sent.
struct SentFrame {
  std::wstring text;
  std::chrono::steady_clock::time_point time;
};

/// A measurement in which nothing happens by itself.
class StillRuntime final : public NRuntime::Implements<NSdk::IRuntime> {
 public:
  HRESULT STDMETHODCALLTYPE CreateTimer(NSdk::ITimerSink* sink, NSdk::ITimer** timer) override;
  HRESULT STDMETHODCALLTYPE GetCanOutput(std::uint32_t channel, NSdk::ICANOutput** output) override;
  HRESULT STDMETHODCALLTYPE GetTime(std::int64_t* time_ns) override;

  std::vector<SentFrame> sent;
};

class HostApplication final : public NRuntime::Implements<NSdk::IHostApplication> {
 public:
  HostApplication(NSdk::HostVariant variant, NRuntime::ConfigurationData configuration);

  HRESULT STDMETHODCALLTYPE GetLanguage(std::uint32_t* language) override;
  HRESULT STDMETHODCALLTYPE GetNumberBase(std::uint32_t* base) override;
  HRESULT STDMETHODCALLTYPE GetVariant(std::uint32_t* variant) override;
  HRESULT STDMETHODCALLTYPE IsMeasuring(std::uint32_t* measuring) override;
  HRESULT STDMETHODCALLTYPE GetService(REFIID iid, void** service) override;
  HRESULT STDMETHODCALLTYPE FindEventSource(REFIID sinkIid, NSdk::IEventSource** source) override;

  std::uint32_t numberBase = 10;
  ComPtr<NRuntime::CommandRegistry> commands = NRuntime::Make<NRuntime::CommandRegistry>();
  ComPtr<NRuntime::EventSource<NSdk::ISettingEvents>> settings =
      NRuntime::Make<NRuntime::EventSource<NSdk::ISettingEvents>>();

 private:
  NSdk::HostVariant mVariant;
  ComPtr<NRuntime::Configuration> mConfiguration;
};

/// A frame window of the host.
class Frame final : public NRuntime::Implements<NSdk::IWindowSite> {
 public:
  Frame();
  ~Frame() override;
  HRESULT STDMETHODCALLTYPE GetParentWindow(void** window) override;
  HRESULT STDMETHODCALLTYPE SetCaption(const wchar_t* caption) override;

  HWND window = nullptr;
};

/// The module in its host, on CAN channels 1 and 2.
class WindowHost {
 public:
  explicit WindowHost(NSdk::HostVariant variant = NSdk::kHostHalvard,
                      const std::filesystem::path& database = {});

  /// A new block in its place.
  ComPtr<IUnknown> AddBlock(const char* progId);
  ComPtr<NSdk::IAction> Command(const wchar_t* name) { return application->commands->FindCommand(name); }

  ComPtr<HostApplication> application;
  ComPtr<Frame> frame = NRuntime::Make<Frame>();
  ComPtr<StillRuntime> runtime = NRuntime::Make<StillRuntime>();
  NRuntime::Module module{OSTREL_MODULE};
};

}  // namespace NTest
