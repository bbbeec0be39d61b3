#pragma once
// Files whose contents are the data of a message.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

namespace NEditors {

/// First `limit` bytes of a file, fewer when it is shorter. `name` is an item text, absolute or relative to
/// `folder`. Only regular files are opened: a pipe or device would block or never end. Empty result: there is
/// no such file or it cannot be read.
std::optional<std::vector<std::uint8_t>> ReadDataFile(std::string_view name,
                                                      const std::filesystem::path& folder,
                                                      std::uint32_t limit);

/// Size of the file in bytes. Empty result: there is no such regular file.
std::optional<std::uint64_t> DataFileSize(std::string_view name, const std::filesystem::path& folder);

}  // namespace NEditors
