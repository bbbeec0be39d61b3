#pragma once

#include <cstddef>
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
  /// At the end: tells the user why not all was written. False: it was not.
  bool End() const;

 private:
  bool mFailed = false;
  std::string mReason;
};

/// One line on standard error, with the program's name in front.
void Complain(std::string_view text);
/// One line on standard error as it stands, for what editors find by FILE:LINE.
void WriteError(std::string_view line);

struct TerminalSize {
  std::size_t columns = 80;
  std::size_t rows = 24;
  bool operator==(const TerminalSize&) const = default;
};

/// Of the terminal that a stream leads to; one of the usual size when it does not say.
TerminalSize SizeOfTerminal(std::FILE* stream);

/// Lines at the foot of a terminal that are written over and over. On anything but a terminal nothing
/// happens.
class Foot {
 public:
  /// On standard output or standard error.
  explicit Foot(std::FILE* stream);
  bool IsShown() const { return mIsTerminal; }
  /// Lines of printable characters, each shorter than the terminal is wide.
  void Show(const std::vector<std::string>& lines);
  /// Makes room for other output.
  void Clear();

 private:
  std::string ToTop() const;
  void Write(const std::string& text);

  std::FILE* mStream;
  bool mIsTerminal;
  std::vector<std::size_t> mShown;  // columns of the lines on the screen now
};

}  // namespace NBench
