#pragma once
// One source file per platform: Windows opens files by wide names only.

#include <cstdio>
#include <filesystem>

namespace NBuses {

/// Creates or empties a file, for bytes as they are. Null and errno set: impossible.
std::FILE* OpenForWriting(const std::filesystem::path& path);
/// Opens a file for reading its bytes as they are. Null and errno set: impossible.
std::FILE* OpenForReading(const std::filesystem::path& path);

}  // namespace NBuses
