#pragma once

#include <functional>
#include <memory>

#include "host/runtime/asio_loop.h"

namespace NBench {

/// While it lives, every Ctrl+C and every request to terminate is told on the loop instead of ending the
/// program.
class Interrupts {
 public:
  enum class Kind { Interrupt, Terminate };
  using Listener = std::function<void(Kind)>;

  Interrupts(NRuntime::AsioLoop& loop, Listener listener);
  ~Interrupts();
  Interrupts(const Interrupts&) = delete;
  Interrupts& operator=(const Interrupts&) = delete;

 private:
  struct State;
  std::unique_ptr<State> mState;
};

}  // namespace NBench
