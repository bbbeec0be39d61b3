#pragma once
// The command line: what its commands have in common, and the choice among them.

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/bench/host_texts.h"
#include "host/bench/option_list.h"

namespace NBench {

/// Exit statuses of the program.
enum ExitStatus : int {
  kOk = 0,
  kFailed = 1,        ///< something was not done as asked
  kBadInput = 2,      ///< the command line or a file named there is at fault; nothing was transmitted
  kInterrupted = 130  ///< stopped by the user before the end
};

/// A command of the program. Its file makes it, and a row in the table of options.cpp makes it known.
class Command {
 public:
  virtual ~Command() = default;
  /// Declares its options. What they are set to is kept in the command.
  virtual void AddOptions(OptionList& options) = 0;
  virtual std::string Help() const = 0;
  /// Where the options of its host are kept; null: it has none.
  virtual HostTexts* Texts() { return nullptr; }
  /// Checks what the options were set to, then does what they ask for. Throws std::runtime_error, one line,
  /// for bad input: nothing was transmitted then, and no file is left behind.
  virtual ExitStatus Run() const = 0;
};

struct CommandLine {
  std::unique_ptr<Command> command;
  std::string text;  ///< help or version to print when there is no command to run
};

/// Reads the arguments behind the program's name, as UTF-8. Throws std::runtime_error, one line that names
/// the argument at fault.
CommandLine ParseCommandLine(const std::vector<std::string>& arguments);

/// The value of --for.
std::chrono::nanoseconds ParseSeconds(const std::string& text);

/// Throws std::runtime_error: "--delay 0: a number is wanted".
[[noreturn]] void Refuse(const std::string& option, const std::string& value, const std::string& wanted);
/// Empty: not a number, or not in the range.
std::optional<std::uint32_t> ParseNumber(const std::string& text, std::uint32_t low, std::uint32_t high);
/// "1 to 255"
std::string Range(std::uint32_t low, std::uint32_t high);

}  // namespace NBench
