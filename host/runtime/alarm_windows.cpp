// asio's header comes first: it brings the socket headers, which must precede those of Windows.
#include <asio/windows/object_handle.hpp>

#include <windows.h>

#include <timeapi.h>

#include <algorithm>
#include <system_error>

#include "host/runtime/io_loop.h"

#ifndef CREATE_WAITABLE_TIMER_HIGH_RESOLUTION
#define CREATE_WAITABLE_TIMER_HIGH_RESOLUTION 0x00000002
#endif

namespace NRuntime {
namespace {

// Systems before Windows 10 1803 refuse the high resolution; there the scheduler's tick is raised to 1 ms.
HANDLE MakeTimerHandle() {
  HANDLE timer =
      CreateWaitableTimerExW(nullptr, nullptr, CREATE_WAITABLE_TIMER_HIGH_RESOLUTION, TIMER_ALL_ACCESS);
  if (timer) return timer;
  static const bool raised = timeBeginPeriod(1) == TIMERR_NOERROR;
  (void)raised;
  timer = CreateWaitableTimerExW(nullptr, nullptr, 0, TIMER_ALL_ACCESS);
  if (!timer) {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "no waitable timer");
  }
  return timer;
}

// One wait stays outstanding as long as the alarm is set; setting it anew only moves the due time.
class WaitableAlarm final : public Alarm {
 public:
  WaitableAlarm(IoLoop& loop, Task task) : mState(std::make_shared<State>(loop, std::move(task))) {}
  ~WaitableAlarm() override {
    Cancel();
    std::error_code ignored;
    mState->timer.close(ignored);
  }

  void SetFor(Time deadline) override {
    mState->deadline = deadline;
    mState->set = true;
    Arm(*mState);
    if (!mState->waiting) Wait(mState);
  }

  void Cancel() override {
    mState->set = false;
    CancelWaitableTimer(mState->timer.native_handle());
  }

 private:
  struct State {
    State(IoLoop& ownLoop, Task ownTask)
        : loop(ownLoop), task(std::move(ownTask)), timer(ownLoop.Executor(), MakeTimerHandle()) {}

    IoLoop& loop;
    Task task;
    asio::windows::object_handle timer;
    Time deadline{};
    bool set = false;
    bool waiting = false;
  };

  static void Arm(State& state) {
    constexpr Time kUnit{100};
    // At least one unit: 0 would be an absolute time in the past century.
    const auto units = std::max<Time::rep>(1, (state.deadline - state.loop.Now() + kUnit - Time{1}) / kUnit);
    LARGE_INTEGER due;
    due.QuadPart = -units;  // negative: relative
    SetWaitableTimer(state.timer.native_handle(), &due, 0, nullptr, nullptr, FALSE);
  }

  static void Wait(const std::shared_ptr<State>& state) {
    state->waiting = true;
    state->timer.async_wait([state](const std::error_code& error) {
      state->waiting = false;
      if (error || !state->set) return;
      if (state->loop.Now() < state->deadline) {
        Arm(*state);
        return Wait(state);
      }
      state->set = false;
      state->task();
    });
  }

  std::shared_ptr<State> mState;
};

}  // namespace

std::unique_ptr<Alarm> MakePreciseAlarm(IoLoop& loop, Task task) {
  return std::make_unique<WaitableAlarm>(loop, std::move(task));
}

}  // namespace NRuntime
