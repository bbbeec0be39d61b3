#include <asio/signal_set.hpp>

#include <csignal>

#include "host/bench/interrupts.h"

namespace NBench {

struct Interrupts::State {
  State(NRuntime::AsioLoop& loop, Listener ownListener)
      : signals(loop.Context(), SIGINT, SIGTERM, SIGHUP), listener(std::move(ownListener)) {}

  void Wait() {
    signals.async_wait([this](const std::error_code& error, int signal) {
      if (error) return;  // this is gone
      Wait();
      listener(signal == SIGINT ? Kind::Interrupt : Kind::Terminate);
    });
  }

  asio::signal_set signals;
  Listener listener;
};

Interrupts::Interrupts(NRuntime::AsioLoop& loop, Listener listener)
    : mState(std::make_unique<State>(loop, std::move(listener))) {
  mState->Wait();
}

Interrupts::~Interrupts() = default;

}  // namespace NBench
