#pragma once
// The commands of a shell, by name.

#include <string>
#include <vector>

#include "host/bench/shell_session.h"

namespace NBench {

/// The words of a line: parted by blanks, held together by quotation marks; "#" at the beginning of a word
/// opens a comment. Throws std::runtime_error when a quotation mark is missing.
std::vector<std::string> SplitLine(const std::string& line);

/// What a shell keeps beside its session.
struct Shell {
  ShellSession& session;
  std::function<void(const std::string&)> print;  ///< whole lines
  /// Saves the configuration to a file, or to its own.
  std::function<void(const std::optional<std::filesystem::path>& file)> save;
  bool quit = false;
};

/// Does what a line asks for. Throws as ShellSession does, and std::runtime_error for a line that is no
/// command.
void ExecuteLine(Shell& shell, const std::string& line);

/// What fits behind `before`, the beginning of a line.
Completion CompleteLine(ShellSession& session, const std::string& before);

}  // namespace NBench
