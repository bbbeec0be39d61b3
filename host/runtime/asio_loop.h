#pragma once

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>

#include "host/runtime/fast_time.h"
#include "host/runtime/loop.h"

namespace NRuntime {

/// The loop of a program without windows, on an asio context that sockets may share.
class AsioLoop final : public Loop {
 public:
  Time Now() const override;
  void Post(Task task) override;
  std::unique_ptr<Alarm> MakeAlarm(Task task) override;

  /// Runs until Stop(), on the caller's thread. What a task throws comes out here.
  void Run();
  /// Makes Run() return after the task at hand. May be called from any thread.
  void Stop() { mContext.stop(); }

  /// For good: the clock no longer goes with the real one but jumps from deadline to deadline as soon as
  /// nothing is left to do. To be called before Run() and before any alarm is set.
  void SkipWaits();
  bool SkipsWaits() const { return mFastTime != nullptr; }

  asio::io_context& Context() { return mContext; }

 private:
  class EitherAlarm;

  asio::io_context mContext{1};
  asio::executor_work_guard<asio::io_context::executor_type> mWork{mContext.get_executor()};
  std::unique_ptr<FastTime> mFastTime;  // empty: real time
};

/// An alarm with a resolution well below a millisecond; made once per platform, since the timers that asio
/// offers on Windows tick with the scheduler.
std::unique_ptr<Alarm> MakePreciseAlarm(AsioLoop& loop, Task task);

}  // namespace NRuntime
