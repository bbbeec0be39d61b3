#include "host/runtime/application.h"

namespace NRuntime {

Application::Application(const ApplicationSettings& settings, ConfigurationData configuration)
    : mSettings(settings), mConfiguration(Make<Configuration>(std::move(configuration))) {
  SetService(NSdk::IidOf<NSdk::IConfigurationService>(),
             static_cast<NSdk::IConfigurationService*>(mConfiguration.Get()));
  if (settings.variant == NSdk::kHostHalvard) {
    SetService(NSdk::IidOf<NSdk::ISimulationSetup>(),
               static_cast<NSdk::ISimulationSetup*>(mConfiguration.Get()));
  }
  SetService(NSdk::IidOf<NSdk::ICommandRegistry>(), static_cast<NSdk::ICommandRegistry*>(mCommands.Get()));
  SetService(NSdk::IidOf<NSdk::IBlockTypeRegistry>(), mBlockTypes.Get());
}

void Application::SetNumberBase(std::uint32_t base) {
  mSettings.numberBase = base;
  mSettingEvents->Tell(&NSdk::ISettingEvents::OnSettingsChanged);
}

void Application::SetConfiguration(ConfigurationData configuration) {
  mConfiguration->Replace(std::move(configuration));
  mDatabaseEvents->Tell(&NSdk::IDatabaseSetupEvents::OnDatabaseSetupChanged);
  TellChanged();
}

void Application::TellOpened() const {
  mApplicationEvents->Tell(&NSdk::IApplicationEvents::OnConfigurationOpened);
}

void Application::TellChanged() const {
  mApplicationEvents->Tell(&NSdk::IApplicationEvents::OnConfigurationChanged);
}

HRESULT Application::GetLanguage(std::uint32_t* language) { return HandOut(mSettings.language, language); }

HRESULT Application::GetNumberBase(std::uint32_t* base) { return HandOut(mSettings.numberBase, base); }

HRESULT Application::GetVariant(std::uint32_t* variant) {
  return HandOut<std::uint32_t>(mSettings.variant, variant);
}

HRESULT Application::IsMeasuring(std::uint32_t* measuring) {
  return HandOut<std::uint32_t>(mIsMeasuring && mIsMeasuring(), measuring);
}

HRESULT Application::GetService(REFIID iid, void** service) {
  if (!service) return E_POINTER;
  for (const Service& offered : mServices) {
    if (offered.iid == iid) return offered.object->QueryInterface(iid, service);
  }
  return E_NOINTERFACE;
}

HRESULT Application::FindEventSource(REFIID sinkIid, NSdk::IEventSource** source) {
  if (!source) return E_POINTER;
  const auto give = [&](NSdk::IEventSource* found) {
    return ComPtr<NSdk::IEventSource>(found).MoveTo(source);
  };
  if (sinkIid == NSdk::IidOf<NSdk::IApplicationEvents>()) return give(mApplicationEvents.Get());
  if (sinkIid == NSdk::IidOf<NSdk::ISettingEvents>()) return give(mSettingEvents.Get());
  if (sinkIid == NSdk::IidOf<NSdk::IDatabaseSetupEvents>()) return give(mDatabaseEvents.Get());
  return E_NOINTERFACE;
}

void Application::SetService(REFIID iid, IUnknown* object) {
  for (Service& service : mServices) {
    if (service.iid == iid) {
      service.object = object;
      return;
    }
  }
  mServices.push_back({iid, object});
}

HRESULT BlockSite::GetApplication(NSdk::IHostApplication** application) {
  return ComPtr<NSdk::IHostApplication>(mApplication).MoveTo(application);
}

HRESULT BlockSite::BlockChanged() {
  if (mChanged) mChanged();
  return S_OK;
}

}  // namespace NRuntime
