#pragma once

#include <functional>
#include <vector>

#include "host/runtime/com.h"
#include "host/runtime/command_registry.h"
#include "host/runtime/configuration.h"
#include "host/runtime/event_source.h"
#include "sdk/blocks.h"
#include "sdk/host_application.h"

namespace NRuntime {

struct ApplicationSettings {
  NSdk::HostVariant variant = NSdk::kHostHalvard;
  std::uint32_t language = 1;
  std::uint32_t numberBase = 10;
};

/// The host as plug-ins see it. Each service lives as long as somebody holds it.
class Application final : public Implements<NSdk::IHostApplication> {
 public:
  Application(const ApplicationSettings& settings, ConfigurationData configuration);

  /// Services beyond the host's own, such as the dialogs of a program. Replaces one of the same interface.
  template <class Service>
  void AddService(ComPtr<Service> service) {
    SetService(NSdk::IidOf<Service>(), service.Get());
  }

  /// Tells the sinks of ISettingEvents.
  void SetNumberBase(std::uint32_t base);
  /// Tells the sinks of IApplicationEvents and IDatabaseSetupEvents.
  void SetConfiguration(ConfigurationData configuration);
  /// A configuration is there to the last block.
  void TellOpened() const;
  /// Blocks have come, gone or changed.
  void TellChanged() const;

  /// How the application learns whether a measurement runs.
  void SetMeasuringQuery(std::function<bool()> isMeasuring) { mIsMeasuring = std::move(isMeasuring); }

  CommandRegistry& Commands() const { return *mCommands; }
  BlockTypeRegistry& BlockTypes() const { return *mBlockTypes; }
  const EventSource<NSdk::ISettingEvents>& SettingEvents() const { return *mSettingEvents; }

  HRESULT STDMETHODCALLTYPE GetLanguage(std::uint32_t* language) override;
  HRESULT STDMETHODCALLTYPE GetNumberBase(std::uint32_t* base) override;
  HRESULT STDMETHODCALLTYPE GetVariant(std::uint32_t* variant) override;
  HRESULT STDMETHODCALLTYPE IsMeasuring(std::uint32_t* measuring) override;
  HRESULT STDMETHODCALLTYPE GetService(REFIID iid, void** service) override;
  HRESULT STDMETHODCALLTYPE FindEventSource(REFIID sinkIid, NSdk::IEventSource** source) override;

 private:
  struct Service {
    IID iid;
    ComPtr<IUnknown> object;
  };

  void SetService(REFIID iid, IUnknown* object);

  ApplicationSettings mSettings;
  std::function<bool()> mIsMeasuring;
  std::vector<Service> mServices;
  ComPtr<Configuration> mConfiguration;
  ComPtr<CommandRegistry> mCommands = Make<CommandRegistry>();
  ComPtr<BlockTypeRegistry> mBlockTypes = Make<BlockTypeRegistry>();
  ComPtr<EventSource<NSdk::IApplicationEvents>> mApplicationEvents =
      Make<EventSource<NSdk::IApplicationEvents>>();
  ComPtr<EventSource<NSdk::ISettingEvents>> mSettingEvents = Make<EventSource<NSdk::ISettingEvents>>();
  ComPtr<EventSource<NSdk::IDatabaseSetupEvents>> mDatabaseEvents =
      Make<EventSource<NSdk::IDatabaseSetupEvents>>();
};

/// A block's place in the application.
class BlockSite final : public Implements<NSdk::IBlockSite> {
 public:
  /// `changed` is called when the block's name or caption has changed; it may be empty.
  explicit BlockSite(Application& application, std::function<void()> changed = {})
      : mApplication(&application), mChanged(std::move(changed)) {}

  HRESULT STDMETHODCALLTYPE GetApplication(NSdk::IHostApplication** application) override;
  HRESULT STDMETHODCALLTYPE BlockChanged() override;

 private:
  ComPtr<NSdk::IHostApplication> mApplication;
  std::function<void()> mChanged;
};

}  // namespace NRuntime
