#pragma once

#include <memory>

#include "host/runtime/com.h"
#include "host/runtime/loop.h"
#include "sdk/runtime.h"

namespace NRuntime {

/// The timers of one measurement. Deadlines are absolute, so that neither a late expiry nor the time that a
/// callback takes adds up over periods.
class TimerQueue {
 public:
  explicit TimerQueue(Loop& loop);
  ~TimerQueue();
  TimerQueue(const TimerQueue&) = delete;
  TimerQueue& operator=(const TimerQueue&) = delete;

  /// A stopped timer. It may outlive the queue and is then never due again.
  ComPtr<NSdk::ITimer> CreateTimer(NSdk::ITimerSink* sink);

  /// Stops every timer for good.
  void Close();

 private:
  class Timer;
  struct Schedule;

  std::shared_ptr<Schedule> mSchedule;
};

}  // namespace NRuntime
