#include "plugin/bit_rates.h"

namespace NPlugin {
namespace {

constexpr BitTiming kTimings[kBitRates] = {
    {0x31, 0x1C},  // 10 kbit/s
    {0x18, 0x1C},  // 20
    {0x09, 0x1C},  // 50
    {0x03, 0x1C},  // 125
    {0x01, 0x1C},  // 250
    {0x00, 0x1C},  // 500
    {0x00, 0x16},  // 800
    {0x00, 0x14},  // 1000
};

}  // namespace

std::span<const BitTiming> BitRates() { return kTimings; }

std::size_t FindBitRate(const BitTiming& timing) {
  for (std::size_t position = kBitRates; position-- > 0;) {
    const BitTiming& known = kTimings[position];
    if (known.register0 == timing.register0 && known.register1 == timing.register1) return position;
  }
  return kBitRates;
}

}  // namespace NPlugin
