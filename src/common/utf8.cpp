#include <cstdint>

#include "common/text.h"

namespace NCommon {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kLastCharacter = 0x10FFFF;
constexpr bool kWideIsUtf16 = sizeof(wchar_t) == 2;

constexpr bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// What the first byte of a sequence of several bytes says: how many follow, its bits of the character, and
// the bounds of the second byte, which exclude overlong forms, surrogates and what lies beyond U+10FFFF.
struct Lead {
  int following = 0;
  char32_t bits = 0;
  std::uint8_t lowest = 0x80;
  std::uint8_t highest = 0xBF;
};

Lead ReadLead(std::uint8_t byte) {
  if (byte >= 0xC2 && byte <= 0xDF) return {.following = 1, .bits = byte & 0x1Fu};
  if (byte == 0xE0) return {.following = 2, .bits = 0, .lowest = 0xA0};
  if (byte == 0xED) return {.following = 2, .bits = 0x0D, .highest = 0x9F};
  if (byte >= 0xE1 && byte <= 0xEF) return {.following = 2, .bits = byte & 0x0Fu};
  if (byte == 0xF0) return {.following = 3, .bits = 0, .lowest = 0x90};
  if (byte == 0xF4) return {.following = 3, .bits = 4, .highest = 0x8F};
  if (byte >= 0xF1 && byte <= 0xF3) return {.following = 3, .bits = byte & 0x07u};
  return {};
}

// Takes one character off the front of the text, which is not empty.
char32_t TakeUtf8(std::string_view& text) {
  const auto first = static_cast<std::uint8_t>(text.front());
  text.remove_prefix(1);
  if (first < 0x80) return first;
  Lead lead = ReadLead(first);
  if (lead.following == 0) return kReplacement;
  char32_t character = lead.bits;
  for (; lead.following > 0; --lead.following) {
    const auto byte = static_cast<std::uint8_t>(text.empty() ? 0 : text.front());
    if (byte < lead.lowest || byte > lead.highest) return kReplacement;
    character = (character << 6) | (byte & 0x3Fu);
    text.remove_prefix(1);
    lead.lowest = 0x80;
    lead.highest = 0xBF;
  }
  return character;
}

char32_t TakeWide(std::wstring_view& text) {
  const auto unit = static_cast<char32_t>(static_cast<std::make_unsigned_t<wchar_t>>(text.front()));
  text.remove_prefix(1);
  if (kWideIsUtf16 && IsHighSurrogate(unit) && !text.empty()) {
    const auto low = static_cast<char32_t>(text.front());
    if (IsLowSurrogate(low)) {
      text.remove_prefix(1);
      return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
    }
  }
  const bool lone = IsHighSurrogate(unit) || IsLowSurrogate(unit);
  return lone || unit > kLastCharacter ? kReplacement : unit;
}

void AppendWide(std::wstring& text, char32_t character) {
  if (kWideIsUtf16 && character > 0xFFFF) {
    text += static_cast<wchar_t>(0xD800 + ((character - 0x10000) >> 10));
    text += static_cast<wchar_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
  } else {
    text += static_cast<wchar_t>(character);
  }
}

void AppendUtf8(std::string& text, char32_t character) {
  const auto following = [&](int shift) { text += static_cast<char>(0x80 | ((character >> shift) & 0x3F)); };
  if (character < 0x80) {
    text += static_cast<char>(character);
  } else if (character < 0x800) {
    text += static_cast<char>(0xC0 | (character >> 6));
    following(0);
  } else if (character < 0x10000) {
    text += static_cast<char>(0xE0 | (character >> 12));
    following(6);
    following(0);
  } else {
    text += static_cast<char>(0xF0 | (character >> 18));
    following(12);
    following(6);
    following(0);
  }
}

}  // namespace

std::wstring FromUtf8(std::string_view text) {
  std::wstring result;
  result.reserve(text.size());
  while (!text.empty()) AppendWide(result, TakeUtf8(text));
  return result;
}

std::string ToUtf8(std::wstring_view text) {
  std::string result;
  result.reserve(text.size());
  while (!text.empty()) AppendUtf8(result, TakeWide(text));
  return result;
}

}  // namespace NCommon
