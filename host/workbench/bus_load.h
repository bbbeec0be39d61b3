#pragma once

#include <cstdint>
#include <optional>

#include "host/configuration/bit_rate.h"
#include "host/runtime/can_message.h"

namespace NWorkbench {

/// Frames and bits of one channel.
class BusLoad {
 public:
  explicit BusLoad(std::optional<std::uint32_t> bitRate) : mBitRate(bitRate) {}

  void Add(const NRuntime::SeenFrame& seen);
  /// Ends a span of time; called about once a second. Load() is then that of the span.
  void EndSpan(NRuntime::Time now);

  std::uint64_t Received() const { return mReceived; }
  std::uint64_t Transmitted() const { return mTransmitted; }
  /// In percent of the bit rate, from 0. Empty: the bit rate is not known.
  std::optional<double> Load() const { return mLoad; }

 private:
  std::optional<std::uint32_t> mBitRate;
  std::uint64_t mReceived = 0, mTransmitted = 0;
  std::uint64_t mBits = 0;  // since the span began
  NRuntime::Time mSpanStart{};
  std::optional<double> mLoad;
};

}  // namespace NWorkbench
