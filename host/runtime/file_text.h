#pragma once
// Text files of the field, as they come from many tools.

#include <cstddef>
#include <filesystem>
#include <string>

namespace NRuntime {

enum class FileState { Read, Missing, Unreadable, TooLarge };

struct FileText {
  FileState state = FileState::Read;
  std::string text;
  std::string reason;  ///< of a file that was not read, without its path
};

/// Reads a file of at most `limit` bytes, as they are; nothing but a regular file.
FileText ReadFileBytes(const std::filesystem::path& path, std::size_t limit);
/// Reads a file of at most `limit` bytes as text.
FileText ReadTextFile(const std::filesystem::path& path, std::size_t limit);

/// Bytes as UTF-8, without a byte order mark: what is not UTF-8 already is taken for Windows-1252.
std::string DecodeText(std::string bytes);

}  // namespace NRuntime
