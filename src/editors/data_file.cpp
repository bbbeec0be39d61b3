#include "editors/data_file.h"

#include <algorithm>
#include <fstream>

#include "common/text.h"

namespace NEditors {
namespace {

// The file that is meant, when it is a regular one.
std::optional<std::filesystem::path> FindRegularFile(std::string_view name,
                                                     const std::filesystem::path& folder) {
  // A name cut off at a zero byte would mean another file.
  if (name.empty() || name.find('\0') != std::string_view::npos) return std::nullopt;
  auto file = folder / NCommon::ItemTextToPath(name);
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error)) return std::nullopt;
  return file;
}

}  // namespace

std::optional<std::vector<std::uint8_t>> ReadDataFile(std::string_view name,
                                                      const std::filesystem::path& folder,
                                                      std::uint32_t limit) {
  constexpr std::size_t kChunk = 0x10000;
  const auto file = FindRegularFile(name, folder);
  if (!file) return std::nullopt;
  std::ifstream stream(*file, std::ios::binary);
  if (!stream) return std::nullopt;
  std::vector<std::uint8_t> bytes;
  // In pieces: the size that the system tells is not to be relied on for every file.
  while (stream && bytes.size() < limit) {
    const std::size_t start = bytes.size();
    const std::size_t wanted = std::min(kChunk, limit - start);
    bytes.resize(start + wanted);
    stream.read(reinterpret_cast<char*>(bytes.data() + start), static_cast<std::streamsize>(wanted));
    bytes.resize(start + static_cast<std::size_t>(stream.gcount()));
  }
  if (stream.bad()) return std::nullopt;
  return bytes;
}

std::optional<std::uint64_t> DataFileSize(std::string_view name, const std::filesystem::path& folder) {
  const auto file = FindRegularFile(name, folder);
  if (!file) return std::nullopt;
  std::error_code error;
  const std::uint64_t size = std::filesystem::file_size(*file, error);
  return error ? std::nullopt : std::optional(size);
}

}  // namespace NEditors
