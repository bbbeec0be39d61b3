#pragma once

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace NBench {

/// Once, first of all: output is bytes and UTF-8, and a reader that goes away is an error of writing instead
/// of a signal.
void PrepareConsole();
/// The arguments behind the program's name, as UTF-8.
std::vector<std::string> CommandLineArguments(int count, char** values);
/// Folder that the program lies in.
std::filesystem::path ProgramFolder();
bool IsTerminal(std::FILE* stream);

/// Standard output of the program.
class Output {
 public:
  /// Writes at once. After a failure nothing more is written.
  void Write(std::string_view text);
  /// Nobody reads any more, or the disk is full.
  bool Failed() const { return mFailed; }
  /// Why, for the user; empty when the reader just went away.
  const std::string& Reason() const { return mReason; }

 private:
  bool mFailed = false;
  std::string mReason;
};

/// One line on standard error, with the program's name in front.
void Complain(std::string_view text);

/// A line at the foot of a terminal that is written over and over. On anything but a terminal nothing
/// happens.
class StatusLine {
 public:
  StatusLine();
  bool IsShown() const { return mIsTerminal; }
  void Show(const std::string& text);
  /// Makes room for other output.
  void Clear();

 private:
  bool mIsTerminal;
  std::size_t mSize = 0;  // columns on the screen now
};

}  // namespace NBench
