#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>

#include "sdk/can_frame.h"

namespace NBuses {

/// Writes frames as a candump log. Each line goes to the file whole and at once, so that whatever ends the
/// program leaves a log that can be read.
class LogWriter {
 public:
  /// Creates the file or empties it. Throws std::runtime_error, one line that names the path.
  explicit LogWriter(const std::filesystem::path& path);

  /// `time` is counted from 1970-01-01 UTC. Throws std::runtime_error when the line cannot be written, for
  /// example on a full disk; the file then ends with the line before, and nothing more is written.
  void Write(std::chrono::nanoseconds time, std::uint32_t channel, const NSdk::CanFrame& frame);

  /// Removes the file if nothing was written to it: for a run that did not come about.
  void Discard();

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  [[noreturn]] void Fail(int error);

  std::filesystem::path mPath;
  std::unique_ptr<std::FILE, Close> mFile;  // empty after a failure
  std::uintmax_t mSize = 0;                 // of the whole lines
};

}  // namespace NBuses
