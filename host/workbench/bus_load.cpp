#include "host/workbench/bus_load.h"

#include <charconv>
#include <stdexcept>

#include "host/buses/bus_name.h"
#include "host/buses/frame_time.h"

namespace NWorkbench {
namespace {

constexpr std::uint32_t kControllerClock =
    8'000'000;  // a time quantum is one or more periods of half the clock

std::optional<std::uint32_t> RateOfWord(const std::string& word) {
  try {
    for (const auto& [key, value] : NBuses::ParseBusName(word).options) {
      std::uint32_t rate = 0;
      const char* const end = value.data() + value.size();
      if (key == "bitrate" && std::from_chars(value.data(), end, rate).ptr == end && rate != 0) return rate;
    }
  } catch (const std::runtime_error&) {  // whoever opens the bus says what is wrong with the word
  }
  return std::nullopt;
}

// Register 0: bits 0..5 prescaler - 1. Register 1: bits 0..3 and 4..6, the segments before and behind the
// sample point, each less 1.
std::uint32_t RateOfRegisters(const NConfiguration::BitTiming& timing) {
  const std::uint32_t prescaler = (timing.register0 & 0x3Fu) + 1;
  const std::uint32_t before = (timing.register1 & 0x0Fu) + 1, behind = ((timing.register1 >> 4) & 0x07u) + 1;
  return kControllerClock / (prescaler * (1 + before + behind));
}

}  // namespace

std::optional<std::uint32_t> BitRateOf(const NConfiguration::Channel& channel) {
  if (const auto rate = RateOfWord(channel.bus)) return rate;
  if (channel.timing) return RateOfRegisters(*channel.timing);
  return std::nullopt;
}

void BusLoad::Add(const NRuntime::SeenFrame& seen) {
  ++(seen.direction == NSdk::kCanTransmitted ? mTransmitted : mReceived);
  mBits += NBuses::FrameBits(seen.frame) + NBuses::kIntermissionBits;
}

void BusLoad::EndSpan(NRuntime::Time now) {
  const auto span = std::chrono::duration<double>(now - mSpanStart).count();
  if (mBitRate && span > 0) mLoad = 100.0 * static_cast<double>(mBits) / (*mBitRate * span);
  mBits = 0;
  mSpanStart = now;
}

}  // namespace NWorkbench
