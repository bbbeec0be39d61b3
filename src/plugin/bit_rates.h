#pragma once
// The bit rates of CiA 301 (5.3) as timing registers of a controller with a 16 MHz clock.

#include <cstddef>
#include <cstdint>
#include <span>

namespace NPlugin {

struct BitTiming {
  std::uint8_t register0 = 0;
  std::uint8_t register1 = 0;
};

/// From 10 kbit/s to 1000 kbit/s, in the order of the page's buttons.
std::span<const BitTiming> BitRates();
inline constexpr std::size_t kBitRates = 8;

/// Position of a timing in that list; kBitRates: it is none of these.
std::size_t FindBitRate(const BitTiming& timing);

}  // namespace NPlugin
