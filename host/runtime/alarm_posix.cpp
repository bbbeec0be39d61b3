#include <asio/steady_timer.hpp>

#include "host/runtime/io_loop.h"

namespace NRuntime {
namespace {

class TimerAlarm final : public Alarm {
 public:
  TimerAlarm(IoLoop& loop, Task task) : mState(std::make_shared<State>(loop, std::move(task))) {}
  // NOLINTNEXTLINE(bugprone-exception-escape): to cancel a timer does not fail
  ~TimerAlarm() override { Cancel(); }

  void SetFor(Time deadline) override {
    mState->deadline = deadline;
    Wait(mState);
  }

  void Cancel() override {
    ++mState->setting;
    mState->timer.cancel();
  }

 private:
  struct State {
    State(IoLoop& ownLoop, Task ownTask)
        : loop(ownLoop), task(std::move(ownTask)), timer(ownLoop.Executor()) {}

    IoLoop& loop;
    Task task;
    asio::steady_timer timer;
    Time deadline{};
    std::uint64_t setting = 0;  // tells a wait that has ended already from the one that counts
  };

  static void Wait(const std::shared_ptr<State>& state) {
    const std::uint64_t setting = ++state->setting;
    state->timer.expires_at(std::chrono::steady_clock::time_point(
        std::chrono::duration_cast<std::chrono::steady_clock::duration>(state->deadline)));
    state->timer.async_wait([state, setting](const std::error_code&) {
      if (setting != state->setting) return;
      if (state->loop.Now() < state->deadline) return Wait(state);
      state->task();
    });
  }

  std::shared_ptr<State> mState;
};

}  // namespace

std::unique_ptr<Alarm> MakePreciseAlarm(IoLoop& loop, Task task) {
  return std::make_unique<TimerAlarm>(loop, std::move(task));
}

}  // namespace NRuntime
