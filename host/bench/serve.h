#pragma once

#include <chrono>
#include <optional>

#include "host/bench/options.h"
#include "host/buses/socketcand_text.h"

namespace NBench {

/// What `ostrel-bench serve` is asked to do.
struct ServeOptions {
  HostOptions host;  ///< at least one channel
  NBuses::HostAndPort address;
  std::optional<std::chrono::nanoseconds> duration;  ///< empty: until Ctrl+C
};

/// Serves the channels to clients of the network. Throws std::runtime_error, one line, when a bus cannot be
/// opened or the address cannot be listened on.
ExitStatus Serve(const ServeOptions& options);

std::unique_ptr<Command> MakeServeCommand();

}  // namespace NBench
