#pragma once
// What the dialog "CANopen IG settings" asks for and how it checks what was typed.

#include <optional>
#include <string>

#include "ig/settings.h"

namespace NIg {

/// The dialog's fields in the order in which they are checked.
enum class SettingsFieldId { ServiceDelay, SdoTimeout, SdoBlockSize, Channel };

struct SettingsEntry {
  std::string serviceDelay;
  std::string sdoTimeout;
  std::string sdoBlockSize;
  std::optional<std::uint32_t> channel;  ///< number of the chosen row; empty: none is chosen
};

struct SettingsFault {
  SettingsFieldId field = SettingsFieldId::ServiceDelay;
  std::wstring message;  ///< empty where nothing is said: no channel is chosen
};

/// What the fields show first.
SettingsEntry ShowSettings(const GeneratorNumbers& numbers);

/// Takes what was typed into `numbers`. On a fault, the first one, nothing is taken. A host with a simulation
/// setup gives the block its channel: the dialog then hides its list and leaves the channel as it is.
std::optional<SettingsFault> TakeSettings(const SettingsEntry& entry, bool hasSimulationSetup,
                                          GeneratorNumbers& numbers);

}  // namespace NIg
