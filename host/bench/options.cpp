#include "host/bench/options.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <stdexcept>

#include "host/bench/commands.h"
#include "host/bench/config.h"
#include "host/bench/describe_options.h"
#include "host/bench/nmt.h"
#include "host/bench/nodes.h"
#include "host/bench/play_options.h"
#include "host/bench/scan_options.h"
#include "host/bench/serve.h"
#include "host/bench/shell.h"

namespace NBench {
namespace {

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
    {"config", "ACTION FILE", "Make, check or print a configuration", MakeConfigCommand},
    {"serve", "", "Let other programs use buses over the network", MakeServeCommand},
};

constexpr char kHelpHead[] = R"(Reference host of the Ostrel module for the command line.

Usage: ostrel-bench COMMAND [OPTIONS]

Commands:
)";

constexpr char kHelpFoot[] = R"(
Options:
  --config FILE   Configuration for the command, which takes it behind its name too
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
    OptionList options(*own);
    known.back().command->AddOptions(options);
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

void UseConfiguration(const std::string& file, const KnownCommand& chosen) {
  HostTexts* const host = chosen.command->Texts();
  if (!host) Refuse("--config", file, chosen.app->get_name() + " is not a command for a configuration");
  if (host->configuration) Refuse("--config", file, "a configuration is named twice");
  host->configuration = file;
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

CommandLine ParseCommandLine(const std::vector<std::string>& arguments) {
  CLI::App app("", "ostrel-bench");
  app.set_version_flag("--version", "ostrel-bench " OSTREL_VERSION "\n");
  app.allow_windows_style_options(false);  // "/folder/file.seq" is a file on Windows too
  app.require_subcommand(0, 1);
  std::optional<std::string> configuration;
  app.add_option("--config", configuration);
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
  if (configuration) UseConfiguration(*configuration, *chosen());
  return {std::move(chosen()->command), {}};
}

}  // namespace NBench
