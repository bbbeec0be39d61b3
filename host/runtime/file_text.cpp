#include "host/runtime/file_text.h"

#include <array>
#include <fstream>
#include <string_view>

#include "host/runtime/text.h"

namespace NRuntime {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// Windows-1252 from 80h to 9Fh; above that it is Latin-1. The five free places stay as they are.
constexpr std::array<wchar_t, 32> kWindowsRow = {
    0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

wchar_t FromWindows(char byte) {
  const auto code = static_cast<unsigned char>(byte);
  return code >= 0x80 && code < 0xA0 ? kWindowsRow[code - 0x80u] : static_cast<wchar_t>(code);
}

bool IsAscii(std::string_view text) {
  for (const char byte : text) {
    if (static_cast<unsigned char>(byte) >= 0x80) return false;
  }
  return true;
}

// The conversion replaces what is malformed, so only well-formed text comes back as it went.
bool IsUtf8(std::string_view text) { return ToUtf8(ToWide(text)) == text; }

FileText Fault(FileState state, std::string reason) { return {state, {}, std::move(reason)}; }

}  // namespace

std::string DecodeText(std::string bytes) {
  if (bytes.starts_with(kByteOrderMark)) bytes.erase(0, kByteOrderMark.size());
  if (IsAscii(bytes) || IsUtf8(bytes)) return bytes;
  std::wstring wide;
  wide.reserve(bytes.size());
  for (const char byte : bytes) wide += FromWindows(byte);
  return ToUtf8(wide);
}

FileText ReadFileBytes(const std::filesystem::path& path, std::size_t limit) {
  std::error_code ignored;
  const auto status = std::filesystem::status(path, ignored);
  if (!std::filesystem::exists(status)) return Fault(FileState::Missing, "no such file");
  if (std::filesystem::is_directory(status)) return Fault(FileState::Unreadable, "a directory, not a file");
  // A description that somebody else's database names may be a pipe, from which nothing ever comes.
  if (!std::filesystem::is_regular_file(status)) {
    return Fault(FileState::Unreadable, "not a file: pipes and devices are not read");
  }
  std::ifstream stream(path, std::ios::binary);
  if (!stream) return Fault(FileState::Unreadable, "the file cannot be opened");
  std::string bytes;
  char block[65536];
  while (stream.read(block, sizeof block) || stream.gcount() > 0) {
    bytes.append(block, static_cast<std::size_t>(stream.gcount()));
    if (bytes.size() > limit) {
      return Fault(FileState::TooLarge, "more than " + std::to_string(limit >> 20) + " MiB");
    }
  }
  if (stream.bad()) return Fault(FileState::Unreadable, "the file cannot be read");
  return {FileState::Read, std::move(bytes), {}};
}

FileText ReadTextFile(const std::filesystem::path& path, std::size_t limit) {
  FileText file = ReadFileBytes(path, limit);
  file.text = DecodeText(std::move(file.text));
  return file;
}

}  // namespace NRuntime
