#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>

#include "host/bench/host.h"
#include "host/bench/options.h"
#include "host/bench/report.h"

namespace NBench {

/// What `ostrel-bench play` is asked to do.
struct PlayOptions {
  std::filesystem::path sequence;
  HostOptions host;           ///< at least one channel
  std::uint32_t channel = 0;  ///< one of the host's
  bool cyclic = false;
  std::optional<std::chrono::nanoseconds> duration;  ///< empty: until nothing is left to send
  std::uint32_t delay_ms = 10;
  std::optional<std::filesystem::path> log;
  bool json = false;
  bool scan = false;       ///< list the nodes as well
  bool liveTable = false;  ///< and redraw the list in its place
  View view;
};

std::unique_ptr<Command> MakePlayCommand();

}  // namespace NBench
