#include <windows.h>

#include "host/configuration/replace_file.h"

namespace NConfiguration {
namespace {

std::error_code LastError() { return {static_cast<int>(GetLastError()), std::system_category()}; }

}  // namespace

// Access rights come from the folder.
std::error_code WriteNewFile(const std::filesystem::path& file, std::string_view bytes,
                             const std::filesystem::path&) {
  const HANDLE opened =
      CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (opened == INVALID_HANDLE_VALUE) return LastError();
  std::error_code error;
  DWORD written = 0;
  const auto size = static_cast<DWORD>(bytes.size());
  if (!WriteFile(opened, bytes.data(), size, &written, nullptr) || !FlushFileBuffers(opened))
    error = LastError();
  if (!error && written != size) error = std::make_error_code(std::errc::no_space_on_device);
  CloseHandle(opened);
  return error;
}

std::error_code RenameOver(const std::filesystem::path& file, const std::filesystem::path& target) {
  const DWORD flags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
  return MoveFileExW(file.c_str(), target.c_str(), flags) ? std::error_code() : LastError();
}

std::error_code CheckWritable(const std::filesystem::path& file) {
  const DWORD attributes = GetFileAttributesW(file.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_READONLY)) return {};
  return std::make_error_code(std::errc::permission_denied);
}

}  // namespace NConfiguration
