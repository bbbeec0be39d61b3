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
  std::optional<std::filesystem::path>
      sequence;      ///< empty: the one that the configuration's generator remembers
  HostOptions host;  ///< at least one channel
  bool cyclic = false;
  std::optional<std::chrono::nanoseconds> duration;  ///< empty: until nothing is left to send
  std::optional<std::uint32_t> delay_ms;             ///< empty: the generator's own
  std::optional<std::filesystem::path> log;
  bool json = false;
  bool scan = false;       ///< list the nodes as well
  bool liveTable = false;  ///< and redraw the list in its place
  View view;
};

std::unique_ptr<Command> MakePlayCommand();

}  // namespace NBench
