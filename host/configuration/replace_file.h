#pragma once
// One source file per platform: how a file is put in the place of another.

#include <filesystem>
#include <string_view>
#include <system_error>

namespace NConfiguration {

/// Makes a file that was not there, with the access rights of `model` if that is one, and returns when its
/// bytes are on the disk. What is there after a failure is for the caller to remove, unless the error is
/// file_exists.
std::error_code WriteNewFile(const std::filesystem::path& file, std::string_view bytes,
                             const std::filesystem::path& model);
/// Gives a file the name of another, which is gone then, in one step that is on the disk when it returns.
std::error_code RenameOver(const std::filesystem::path& file, const std::filesystem::path& target);
/// Why a file that is there may not be written; no error: it may, or it is not there.
std::error_code CheckWritable(const std::filesystem::path& file);

}  // namespace NConfiguration
