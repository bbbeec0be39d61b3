#include "host/configuration/bit_rate.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

#include "host/buses/bus_name.h"

namespace NConfiguration {
namespace {

constexpr std::uint32_t kControllerClock =
    8'000'000;  // a time quantum is one or more periods of half the clock
constexpr std::uint32_t kFastest = 1'000'000;
constexpr char kBitRate[] = "bitrate";

std::optional<std::uint32_t> RateOfWord(const std::string& word) {
  try {
    for (const auto& [key, value] : NBuses::ParseBusName(word).options) {
      std::uint32_t rate = 0;
      const char* const end = value.data() + value.size();
      if (key == kBitRate && std::from_chars(value.data(), end, rate).ptr == end && rate != 0) return rate;
    }
  } catch (const std::runtime_error&) {  // whoever opens the bus says what is wrong with the word
  }
  return std::nullopt;
}

// Register 0: bits 0..5 prescaler - 1. Register 1: bits 0..3 and 4..6, the segments before and behind the
// sample point, each less 1. Empty: faster than CAN can be.
std::optional<std::uint32_t> RateOfRegisters(const BitTiming& timing) {
  const std::uint32_t prescaler = (timing.register0 & 0x3Fu) + 1;
  const std::uint32_t before = (timing.register1 & 0x0Fu) + 1, behind = ((timing.register1 >> 4) & 0x07u) + 1;
  const std::uint32_t rate = kControllerClock / (prescaler * (1 + before + behind));
  return rate <= kFastest ? std::optional(rate) : std::nullopt;
}

}  // namespace

std::optional<std::uint32_t> BitRateOf(const Channel& channel) {
  if (const auto rate = RateOfWord(channel.bus)) return rate;
  return channel.timing ? RateOfRegisters(*channel.timing) : std::nullopt;
}

std::string BusForUse(const Channel& channel) {
  const auto rate = channel.timing ? RateOfRegisters(*channel.timing) : std::nullopt;
  NBuses::BusName name = NBuses::ParseBusName(channel.bus);
  const bool isTimed = std::any_of(name.options.begin(), name.options.end(),
                                   [](const auto& option) { return option.first == kBitRate; });
  if (!rate || name.kind != "virtual" || isTimed) return channel.bus;
  name.options.emplace_back(kBitRate, std::to_string(*rate));
  return NBuses::BusWord(name);
}

}  // namespace NConfiguration
