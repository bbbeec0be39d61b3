#pragma once

#include <memory>

#include "host/runtime/asio_loop.h"

namespace NBench {

/// While it lives, Ctrl+C and a request to terminate run a task on the loop instead of ending the program. A
/// second Ctrl+C ends it.
class StopRequest {
 public:
  StopRequest(NRuntime::AsioLoop& loop, NRuntime::Task task);
  ~StopRequest();
  StopRequest(const StopRequest&) = delete;
  StopRequest& operator=(const StopRequest&) = delete;

 private:
  struct State;
  std::unique_ptr<State> mState;
};

}  // namespace NBench
