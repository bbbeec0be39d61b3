#pragma once
// The host application that the module is bound to, in one process-wide slot.

#include <cstdint>
#include <optional>

#include "com/com_ptr.h"
#include "sdk/host_application.h"

namespace NCommon {

/// Replaces the application; the previous one is released. Null clears the slot.
void SetHostApplication(NSdk::IHostApplication* application);

/// Empty while no host has initialised the plug-in object.
NCom::ComPtr<NSdk::IHostApplication> HostApplication();

/// Whether the host has a simulation setup, and with it networks that give their blocks a CAN channel.
bool HasSimulationSetup();

/// Number of the user's language; that of English, which is the module's own, where no host tells.
std::uint32_t HostLanguage();
inline constexpr std::uint32_t kEnglish = 1;

/// Base in which the host shows numbers; empty where no host tells.
std::optional<std::uint32_t> HostNumberBase();

/// A service of the host by its interface; empty when there is no host or it has no such service.
template <class Service>
NCom::ComPtr<Service> HostService() {
  NCom::ComPtr<Service> service;
  if (const auto application = HostApplication()) {
    application->GetService(NSdk::IidOf<Service>(), service.ReceiveVoid());
  }
  return service;
}

}  // namespace NCommon
