#pragma once

#include "host/runtime/loop.h"
#include "sdk/can_frame.h"

namespace NDevices {

using NRuntime::Time;

/// The deadline of who waits for nothing.
inline constexpr Time kNever = Time::max();

/// Takes frames for the bus.
class FrameSink {
 public:
  virtual ~FrameSink() = default;
  /// Must not hand frames to the sender from inside this call.
  virtual void Send(const NSdk::CanFrame& frame) = 0;
};

/// When a period that began at `start` ends for the first time after `now`: what was missed is left out, and
/// being late never adds up.
inline Time NextEnd(Time start, Time period, Time now) {
  if (now < start) return start + period;
  return start + ((now - start) / period + 1) * period;
}

}  // namespace NDevices
