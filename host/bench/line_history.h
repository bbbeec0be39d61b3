#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace NBench {

inline constexpr int kHistoryLines = 1000;

/// The last kHistoryLines lines of the file, oldest first; a file that has more is cut down to them.
std::vector<std::string> LoadHistory(const std::filesystem::path& file);
/// Only the user may read the file. One that cannot be written is left as it is.
void AppendHistory(const std::filesystem::path& file, const std::string& line);

}  // namespace NBench
