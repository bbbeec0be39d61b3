#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>

#include "host/bench/host.h"
#include "host/bench/options.h"

namespace NBench {

/// What `ostrel-bench scan` is asked to do.
struct ScanOptions {
  HostOptions host;                                  ///< at least one channel
  std::optional<std::chrono::nanoseconds> duration;  ///< empty: until the user stops it
  std::optional<std::filesystem::path> log;
  bool json = false;
};

std::unique_ptr<Command> MakeScanCommand();

}  // namespace NBench
