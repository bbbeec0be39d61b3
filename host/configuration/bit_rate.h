#pragma once
// How fast the bus of a channel is.

#include <cstdint>
#include <optional>
#include <string>

#include "host/configuration/document.h"

namespace NConfiguration {

/// Bits per second of a channel: those of its bus word, else those of its timing registers with a clock of
/// 16 MHz. Empty: neither tells.
std::optional<std::uint32_t> BitRateOf(const Channel& channel);

/// The word that makes the bus: a virtual one without a bit rate of its own goes by the registers.
std::string BusForUse(const Channel& channel);

}  // namespace NConfiguration
