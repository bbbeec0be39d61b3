#pragma once
// Waiting for standard input, on POSIX systems.

#include <asio/posix/stream_descriptor.hpp>

#include "host/runtime/asio_loop.h"

namespace NBench {

/// Standard input, waited for through the loop. It is never made non-blocking, as asio does with what it is
/// given: a terminal is opened once for standard input, standard output and the shell that started the
/// program, so that writing to it would fail whenever it is slow.
class InputWatch {
 public:
  /// Throws std::system_error.
  explicit InputWatch(NRuntime::AsioLoop& loop);

  /// Runs the loop until somebody stops it. Whether there is something to read now, or the end; a file always
  /// has something.
  bool Run();

 private:
  NRuntime::AsioLoop& mLoop;
  asio::posix::stream_descriptor mEvents;
  bool mCanWait;
  bool mWaiting = false;
};

}  // namespace NBench
