#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "host/bench/host.h"
#include "host/bench/report.h"

namespace NBench {

/// Exit statuses of the program.
enum ExitStatus : int {
  kOk = 0,
  kFailed = 1,        ///< something was not transmitted as asked
  kBadInput = 2,      ///< the command line or a file named there is at fault; nothing was transmitted
  kInterrupted = 130  ///< stopped by the user before the sequence had ended
};

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
  View view;
};

struct CommandLine {
  std::optional<PlayOptions> play;
  std::string text;  ///< help or version to print when there is nothing to play
};

/// Reads the arguments behind the program's name, as UTF-8. Throws std::runtime_error, one line that names
/// the argument at fault.
CommandLine ParseCommandLine(const std::vector<std::string>& arguments);

}  // namespace NBench
