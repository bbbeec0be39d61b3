#pragma once
// The one thread of a host: what is due at a time, what was posted, and the clock that both go by. Tests put
// a loop with a virtual clock in the place of the real one.

#include <chrono>
#include <functional>
#include <memory>

namespace NRuntime {

/// A moment on the loop's clock, which never jumps; its zero has no meaning.
using Time = std::chrono::nanoseconds;
using Task = std::function<void()>;

class Clock {
 public:
  virtual ~Clock() = default;
  virtual Time Now() const = 0;
};

/// Runs a task at a moment. Destroying it withdraws what is set.
class Alarm {
 public:
  virtual ~Alarm() = default;
  /// Replaces what was set. The task never runs before `deadline`; one in the past means as soon as possible,
  /// though never inside this call.
  virtual void SetFor(Time deadline) = 0;
  virtual void Cancel() = 0;
};

class Loop : public Clock {
 public:
  /// Runs the task later, after those posted before it.
  virtual void Post(Task task) = 0;
  /// The alarm must not outlive the loop.
  virtual std::unique_ptr<Alarm> MakeAlarm(Task task) = 0;
};

}  // namespace NRuntime
