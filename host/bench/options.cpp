#include "host/bench/options.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <stdexcept>

#include "host/bench/commands.h"
#include "host/bench/describe_options.h"
#include "host/bench/nmt.h"
#include "host/bench/nodes.h"
#include "host/bench/play_options.h"
#include "host/bench/scan_options.h"
#include "host/bench/serve.h"
#include "host/bench/shell.h"
#include "host/runtime/text.h"

namespace NBench {
namespace {

constexpr std::uint32_t kLastChannel = 255;
constexpr double kLongestRun_s = 1e8;

struct CommandRow {
  const char* name;
  const char* arguments;
  const char* summary;
  std::unique_ptr<Command> (*make)();
};

constexpr CommandRow kCommands[] = {
    {"play", "FILE.seq", "Play a sequence file on a CAN bus", MakePlayCommand},
    {"scan", "", "List the CANopen nodes on a CAN bus", MakeScanCommand},
    {"nmt", "COMMAND NODE...", "Send an NMT command to nodes on a CAN bus", MakeNmtCommand},
    {"shell", "[SCRIPT]", "Drive a host by commands, typed or from a script", MakeShellCommand},
    {"commands", "", "List the commands that the module registers", MakeCommandsCommand},
    {"nodes", "--db FILE.dbc", "List the CANopen nodes of a network's database", MakeNodesCommand},
    {"describe", "FILE.eds", "Print the object dictionary of a device description", MakeDescribeCommand},
    {"serve", "", "Let other programs use buses over the network", MakeServeCommand},
};

constexpr char kHelpHead[] = R"(Reference host of the Ostrel module for the command line.

Usage: ostrel-bench COMMAND [OPTIONS]

Commands:
)";

constexpr char kHelpFoot[] = R"(
Options:
  -h, --help      Print this help; behind a command, the help of that command
  --version       Print the version

Example:
  ostrel-bench play first-steps.seq
)";

std::string Help() {
  constexpr std::size_t kSummaryColumn = 23;
  std::string text = kHelpHead;
  for (const CommandRow& row : kCommands) {
    std::string line = std::string("  ") + row.name + ' ' + row.arguments;
    line.resize(std::max(line.size() + 2, kSummaryColumn), ' ');
    text += line + row.summary + '\n';
  }
  return text + kHelpFoot;
}

NSdk::HostVariant ParseVariant(const std::string& text) {
  if (text == "halvard") return NSdk::kHostHalvard;
  if (text == "tesmond") return NSdk::kHostTesmond;
  Refuse("--variant", text, "halvard or tesmond is wanted");
}

ChannelOption ParseChannel(const std::string& text) {
  const std::size_t equals = text.find('=');
  const auto number = ParseNumber(text.substr(0, equals), 1, kLastChannel);
  if (equals == std::string::npos || !number) {
    Refuse("--can", text, "NUMBER=BUS is wanted, with a channel number from " + Range(1, kLastChannel));
  }
  return {*number, text.substr(equals + 1)};
}

// Two devices of one node-ID would answer each other's requests.
std::vector<DeviceOption> ParseDevices(const std::vector<std::string>& texts, std::uint32_t channel) {
  std::vector<DeviceOption> devices;
  for (const std::string& text : texts) {
    NDevices::DeviceWord word = NDevices::ParseDeviceWord(text);
    for (const DeviceOption& other : devices) {
      if (other.device.nodeId == word.nodeId) Refuse("--device", text, "this node-ID is given twice");
    }
    devices.push_back({channel, std::move(word)});
  }
  return devices;
}

// A command that the library knows, and what it becomes.
struct KnownCommand {
  std::unique_ptr<Command> command;
  const CLI::App* app;
};

std::vector<KnownCommand> AddCommands(CLI::App& app) {
  std::vector<KnownCommand> known;
  for (const CommandRow& row : kCommands) {
    CLI::App* const own = app.add_subcommand(row.name);
    known.push_back({row.make(), own});
    known.back().command->AddOptions(*own);
  }
  return known;
}

std::string FirstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

// The library's words, but where they are more than a line or say less than is known.
std::string Fault(const CLI::ParseError& error) {
  const std::string text = FirstLine(error.what());
  const bool missing =
      dynamic_cast<const CLI::ArgumentMismatch*>(&error) && text.find("missing") != std::string::npos;
  return missing ? text.substr(0, text.find(':')) + ": a value is wanted behind it" : text;
}

}  // namespace

void Refuse(const std::string& option, const std::string& value, const std::string& wanted) {
  throw std::runtime_error(option + " " + (value.empty() ? "\"\"" : value) + ": " + wanted);
}

std::optional<std::uint32_t> ParseNumber(const std::string& text, std::uint32_t low, std::uint32_t high) {
  std::uint32_t number = 0;
  const char* end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || stopped != end || number < low || number > high) return std::nullopt;
  return number;
}

std::string Range(std::uint32_t low, std::uint32_t high) {
  return std::to_string(low) + " to " + std::to_string(high);
}

std::chrono::nanoseconds ParseSeconds(const std::string& text) {
  double seconds = 0;
  const char* end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, seconds, std::chars_format::fixed);
  // The comparison is written so that "nan" fails it.
  if (error != std::errc() || stopped != end || !(seconds > 0 && seconds <= kLongestRun_s)) {
    Refuse("--for", text, "a number of seconds greater than 0 is wanted");
  }
  return std::max(std::chrono::nanoseconds(1), std::chrono::nanoseconds(std::llround(seconds * 1e9)));
}

std::vector<ChannelOption> ParseChannels(const std::vector<std::string>& texts) {
  if (texts.empty()) return {{1, "virtual"}};
  std::vector<ChannelOption> channels;
  for (const std::string& text : texts) {
    ChannelOption channel = ParseChannel(text);
    const auto same = [&](const ChannelOption& other) { return other.number == channel.number; };
    if (std::any_of(channels.begin(), channels.end(), same)) {
      Refuse("--can", text, "channel " + std::to_string(channel.number) + " is given twice");
    }
    channels.push_back(std::move(channel));
  }
  return channels;
}

std::uint32_t ChooseChannel(const std::optional<std::string>& text,
                            const std::vector<ChannelOption>& channels) {
  std::string known;
  std::uint32_t lowest = channels.front().number;
  const auto wanted = text ? ParseNumber(*text, 1, kLastChannel) : std::nullopt;
  for (const ChannelOption& channel : channels) {
    if (wanted && channel.number == *wanted) return *wanted;
    lowest = std::min(lowest, channel.number);
    known += (known.empty() ? "" : ", ") + std::to_string(channel.number);
  }
  if (text) {
    Refuse("--channel", *text,
           "there is no such CAN channel (" + std::string(channels.size() > 1 ? "channels: " : "channel: ") +
               known + ")");
  }
  return lowest;
}

void HostTexts::AddOptions(CLI::App& app) {
  app.add_option("--can", channels)->allow_extra_args(false);
  app.add_option("--device", devices)->allow_extra_args(false);
  app.add_option("--channel", channel);
  app.add_option("--variant", variant);
  app.add_option("--module", module);
}

HostOptions CheckHost(const HostTexts& texts) {
  HostOptions options;
  options.channels = ParseChannels(texts.channels);
  options.devices = ParseDevices(texts.devices, ChooseChannel(texts.channel, options.channels));
  options.variant = ParseVariant(texts.variant);
  if (texts.module) options.module = NRuntime::ToPath(*texts.module);
  return options;
}

CommandLine ParseCommandLine(const std::vector<std::string>& arguments) {
  CLI::App app("", "ostrel-bench");
  app.set_version_flag("--version", "ostrel-bench " OSTREL_VERSION "\n");
  app.allow_windows_style_options(false);  // "/folder/file.seq" is a file on Windows too
  app.require_subcommand(0, 1);
  std::vector<KnownCommand> commands = AddCommands(app);
  const auto chosen = [&] {
    return std::find_if(commands.begin(), commands.end(),
                        [](const KnownCommand& known) { return known.app->parsed(); });
  };
  try {
    app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
  } catch (const CLI::CallForHelp&) {
    return {nullptr, chosen() != commands.end() ? chosen()->command->Help() : Help()};
  } catch (const CLI::CallForVersion& version) {
    return {nullptr, version.what()};
  } catch (const CLI::ParseError& error) {
    throw std::runtime_error(Fault(error));
  }
  if (chosen() == commands.end()) {
    throw std::runtime_error("a command is wanted; ostrel-bench --help lists them");
  }
  return {std::move(chosen()->command), {}};
}

}  // namespace NBench
