#include <windows.h>

#include <limits>
#include <stdexcept>

#include "common/text.h"

namespace NCommon {
namespace {

int CheckedSize(std::size_t size) {
  if (size > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
    throw std::length_error("text too long to convert");
  }
  return static_cast<int>(size);
}

}  // namespace

std::wstring ToWide(std::string_view itemText) {
  const int size = CheckedSize(itemText.size());
  const int needed = MultiByteToWideChar(CP_ACP, 0, itemText.data(), size, nullptr, 0);
  std::wstring text(static_cast<std::size_t>(needed), L'\0');
  MultiByteToWideChar(CP_ACP, 0, itemText.data(), size, text.data(), needed);
  return text;
}

std::string ToItemText(std::wstring_view text) {
  const int size = CheckedSize(text.size());
  const int needed = WideCharToMultiByte(CP_ACP, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
  std::string itemText(static_cast<std::size_t>(needed), '\0');
  WideCharToMultiByte(CP_ACP, 0, text.data(), size, itemText.data(), needed, nullptr, nullptr);
  return itemText;
}

std::filesystem::path ItemTextToPath(std::string_view itemText) { return ToWide(itemText); }
std::string PathToItemText(const std::filesystem::path& path) { return ToItemText(path.native()); }

std::filesystem::path WideToPath(std::wstring_view text) { return text; }
std::wstring PathToWide(const std::filesystem::path& path) { return path.native(); }

}  // namespace NCommon
