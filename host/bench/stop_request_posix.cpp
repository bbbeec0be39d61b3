#include <asio/signal_set.hpp>

#include <csignal>

#include "host/bench/stop_request.h"

namespace NBench {

struct StopRequest::State {
  State(NRuntime::AsioLoop& loop, NRuntime::Task ownTask)
      : signals(loop.Context(), SIGINT, SIGTERM, SIGHUP), task(std::move(ownTask)) {}

  asio::signal_set signals;
  NRuntime::Task task;
};

StopRequest::StopRequest(NRuntime::AsioLoop& loop, NRuntime::Task task)
    : mState(std::make_unique<State>(loop, std::move(task))) {
  mState->signals.async_wait([state = mState.get()](const std::error_code& error, int) {
    if (error) return;
    state->signals.clear();
    state->task();
  });
}

StopRequest::~StopRequest() = default;

}  // namespace NBench
