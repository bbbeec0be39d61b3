#pragma once
// `ostrel-bench config`: configurations are made, checked and printed.

#include <filesystem>
#include <memory>
#include <optional>

#include "host/bench/options.h"

namespace NBench {

struct ConfigInitOptions {
  std::filesystem::path file;
  HostOptions host;  ///< what the configuration is to hold; paths as on the command line
  std::optional<std::filesystem::path> sequence;  ///< for the generator to remember
  bool force = false;                             ///< replace a file
};

/// Writes a configuration with a generator and a scanner and all their settings, as the module has them.
/// Throws std::runtime_error, one line, for bad input; no file is changed then.
ExitStatus InitConfig(const ConfigInitOptions& options);

/// Prints what is wrong with a configuration and with the files that it names, or what it holds.
ExitStatus CheckConfig(const std::filesystem::path& file, const std::optional<std::filesystem::path>& module);

/// Prints what a configuration holds. Throws std::runtime_error, one line, when the file cannot be used.
ExitStatus ShowConfig(const std::filesystem::path& file, bool json);

std::unique_ptr<Command> MakeConfigCommand();

}  // namespace NBench
