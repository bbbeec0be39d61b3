#pragma once

#include <asio/any_io_executor.hpp>

#include "host/runtime/fast_time.h"
#include "host/runtime/loop.h"

namespace NRuntime {

/// A loop that sockets and timers of asio share. Whatever is made with its executor reports on the loop's
/// thread, wherever the waiting is done.
class IoLoop : public Loop {
 public:
  Time Now() const final;
  void Post(Task task) final;
  std::unique_ptr<Alarm> MakeAlarm(Task task) final;

  /// For good: the clock no longer goes with the real one but jumps from deadline to deadline as soon as
  /// nothing is left to do. To be called before the loop runs and before any alarm is set.
  void SkipWaits();
  bool SkipsWaits() const { return mFastTime != nullptr; }

  virtual asio::any_io_executor Executor() = 0;

  /// So much comes that a loop to which each event is dear may take a few milliseconds of it at once. What is
  /// due at a time then comes by as much later.
  virtual void SetFlooded(bool) {}

 protected:
  virtual void PostForRealTime(Task task) = 0;
  /// When an alarm of real time goes off that is wanted for `deadline`: not before.
  virtual Time RoundedUp(Time deadline) const { return deadline; }
  /// Something was posted or set on the fast clock.
  virtual void OnFastWork() {}
  /// Null while the clock is the real one.
  FastTime* Fast() const { return mFastTime.get(); }

 private:
  class EitherAlarm;

  std::unique_ptr<FastTime> mFastTime;  // empty: real time
};

/// An alarm with a resolution well below a millisecond; made once per platform, since the timers that asio
/// offers on Windows tick with the scheduler.
std::unique_ptr<Alarm> MakePreciseAlarm(IoLoop& loop, Task task);

}  // namespace NRuntime
