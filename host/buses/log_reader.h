#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace NBuses {

/// Reads the lines of a text file of any size, a block at a time.
class LogReader {
 public:
  /// Throws std::runtime_error, one line that names the path.
  explicit LogReader(const std::filesystem::path& path);

  struct Line {
    std::uint64_t number = 0;  ///< from 1
    std::string_view text;  ///< without line end, good until the next call; empty when the line is too long
    bool isTooLong = false;
  };
  /// Empty at the end of the file. Throws std::runtime_error when the file cannot be read.
  std::optional<Line> Next();

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  bool Refill();
  void SkipRestOfLine();

  std::filesystem::path mPath;
  std::unique_ptr<std::FILE, Close> mFile;
  std::vector<char> mBlock;
  std::size_t mBegin = 0;  // of what is not yet read, in the block
  std::size_t mEnd = 0;
  std::uint64_t mNumber = 0;
};

}  // namespace NBuses
