#pragma once

#include <deque>

#include "host/devices/frame_sink.h"

namespace NDevices {

/// Sends frames after a delay, in their order.
class DelayedSender {
 public:
  explicit DelayedSender(FrameSink& bus) : mBus(bus) {}

  /// Without a delay, and with nothing waiting, the frame leaves inside this call. Frames that find too many
  /// waiting are lost.
  void Send(const NSdk::CanFrame& frame, Time delay, Time now);
  void Clear() { mWaiting.clear(); }

  Time NextDeadline() const { return mWaiting.empty() ? kNever : mWaiting.front().due; }
  void OnDeadline(Time now);

 private:
  static constexpr std::size_t kCapacity = 1024;

  struct Waiting {
    NSdk::CanFrame frame;
    Time due;
  };

  FrameSink& mBus;
  std::deque<Waiting> mWaiting;
};

}  // namespace NDevices
