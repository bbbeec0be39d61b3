#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

#include "benchmarks/served_bus.h"

namespace NBenchmarks {

/// Sends frames on a served bus at a rate, in the server's thread.
class FrameSource {
 public:
  /// The frame of a number from 0 on.
  using FrameOf = std::function<NSdk::CanFrame(std::uint64_t)>;

  FrameSource(ServedBus& bus, std::uint64_t count, double perSecond, FrameOf frameOf)
      : mBus(bus),
        mCount(count),
        mPerSecond(perSecond),
        mFrameOf(std::move(frameOf)),
        mAlarm(bus.Loop().MakeAlarm([this] { Tick(); })) {}

  /// These are to be called in the server's thread.
  void StartAfter(NRuntime::Time delay) {
    mStart = mBus.Loop().Now() + delay;
    mAlarm->SetFor(mStart);
  }
  void Stop() { mAlarm.reset(); }

 private:
  static constexpr NRuntime::Time kTick = std::chrono::milliseconds(1);

  void Tick() {
    const double elapsed_s = std::chrono::duration<double>(mBus.Loop().Now() - mStart).count();
    const auto due = static_cast<std::uint64_t>(elapsed_s * mPerSecond);
    for (; mSent < due && mSent < mCount; ++mSent) mBus.Send(mFrameOf(mSent));
    if (mSent < mCount) mAlarm->SetFor(mBus.Loop().Now() + kTick);
  }

  ServedBus& mBus;
  const std::uint64_t mCount;
  const double mPerSecond;
  const FrameOf mFrameOf;
  std::unique_ptr<NRuntime::Alarm> mAlarm;
  std::uint64_t mSent = 0;
  NRuntime::Time mStart{};
};

}  // namespace NBenchmarks
