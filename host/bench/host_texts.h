#pragma once
// The options of a host on the command line, and the host that they and a configuration ask for.

#include <optional>
#include <string>
#include <vector>

#include "host/bench/host.h"
#include "host/bench/option_list.h"

namespace NBench {

/// As text, before anything is checked.
struct HostTexts {
  std::optional<std::string> configuration;
  std::vector<std::string> channels, devices, databases;
  std::optional<std::string> channel, variant, module;

  /// --config, --can, --device and --channel.
  void AddBusOptions(OptionList& options);
  /// These and --db, --variant and --module.
  void AddOptions(OptionList& options);
};

/// The lines of a help text for the options of AddOptions(), and what buses there are.
std::string DescribeHostOptions();

/// What the configuration says, if one is named, with the options in front of it: --can gives a channel
/// another bus or adds one, --device replaces a device or adds one, --db adds a database. Without either
/// there is one channel. Throws std::runtime_error, one line that names the option and its value, or the
/// place in the configuration.
HostOptions CheckHost(const HostTexts& texts);

/// The value of --log. Throws std::runtime_error when it would replace a file that the host is set up with.
std::filesystem::path CheckLog(const std::string& text, const HostOptions& host);

}  // namespace NBench
