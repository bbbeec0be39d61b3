#include "host/runtime/text.h"

#include <type_traits>

namespace NRuntime {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr bool kWideIsUtf16 = sizeof(wchar_t) == 2;
constexpr bool kPathsAreWide = std::is_same_v<std::filesystem::path::value_type, wchar_t>;

bool IsSurrogate(char32_t code) { return code >= 0xD800 && code <= 0xDFFF; }

// Bytes of a UTF-8 sequence by its first byte; 0: no first byte.
std::size_t SequenceSize(unsigned char first) {
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) return 2;
  if (first >= 0xE0 && first <= 0xEF) return 3;
  return first >= 0xF0 && first <= 0xF4 ? 4 : 0;
}

// Takes one character off the front.
char32_t TakeUtf8(std::string_view& text) {
  static constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  const auto first = static_cast<unsigned char>(text.front());
  const std::size_t size = SequenceSize(first);
  char32_t code = size < 2 ? first : first & (0x7Fu >> size);
  std::size_t taken = 1;
  while (taken < size && taken < text.size() && (static_cast<unsigned char>(text[taken]) & 0xC0) == 0x80) {
    code = code << 6 | (static_cast<unsigned char>(text[taken++]) & 0x3F);
  }
  text.remove_prefix(taken);
  const bool whole = size != 0 && taken == size;
  return whole && code >= kSmallest[size] && code <= 0x10FFFF && !IsSurrogate(code) ? code : kReplacement;
}

char32_t TakeWide(std::wstring_view& text) {
  const auto first = static_cast<char32_t>(text.front());
  text.remove_prefix(1);
  if (!IsSurrogate(first)) return first <= 0x10FFFF ? first : kReplacement;
  if (!kWideIsUtf16 || first >= 0xDC00 || text.empty()) return kReplacement;
  const auto second = static_cast<char32_t>(text.front());
  if (second < 0xDC00 || second > 0xDFFF) return kReplacement;
  text.remove_prefix(1);
  return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
}

void AppendWide(std::wstring& text, char32_t code) {
  if (!kWideIsUtf16 || code < 0x10000) {
    text += static_cast<wchar_t>(code);
  } else {
    text += static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10));
    text += static_cast<wchar_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
  }
}

void AppendUtf8(std::string& text, char32_t code) {
  const auto tail = [&](int shift) { text += static_cast<char>(0x80 | (code >> shift & 0x3F)); };
  if (code < 0x80) {
    text += static_cast<char>(code);
  } else if (code < 0x800) {
    text += static_cast<char>(0xC0 | code >> 6);
    tail(0);
  } else if (code < 0x10000) {
    text += static_cast<char>(0xE0 | code >> 12);
    tail(6), tail(0);
  } else {
    text += static_cast<char>(0xF0 | code >> 18);
    tail(12), tail(6), tail(0);
  }
}

}  // namespace

std::wstring ToWide(std::string_view utf8) {
  std::wstring wide;
  wide.reserve(utf8.size());
  while (!utf8.empty()) AppendWide(wide, TakeUtf8(utf8));
  return wide;
}

std::string ToUtf8(std::wstring_view wide) {
  std::string utf8;
  utf8.reserve(wide.size());
  while (!wide.empty()) AppendUtf8(utf8, TakeWide(wide));
  return utf8;
}

// The library's own conversions throw where a path is wide and the text is malformed.
std::filesystem::path ToPath(std::string_view utf8) {
  if constexpr (kPathsAreWide) return ToWide(utf8);
  return std::string(utf8);
}

std::string PathText(const std::filesystem::path& path) {
  if constexpr (kPathsAreWide) return ToUtf8(path.wstring());
  return path.string();
}

std::wstring WidePathText(const std::filesystem::path& path) {
  if constexpr (kPathsAreWide) return path.wstring();
  return ToWide(path.string());
}

}  // namespace NRuntime
