// Item texts are UTF-8, whatever the locale of the process.
#include <algorithm>
#include <array>

#include "ig/sequence_file_text.h"

namespace NIg {

namespace {

constexpr char32_t kFirstSupplementary = 0x10000;
constexpr char32_t kLastCharacter = 0x10FFFF;
constexpr char32_t kReplacement = U'?';

bool IsSurrogate(char32_t character) { return character >= 0xD800 && character <= 0xDFFF; }

struct Lead {
  std::uint8_t mask, bits;
  unsigned followers;
  char32_t
      first;  // the least character that needs so many bytes: longer forms of a smaller one are not UTF-8
};
constexpr std::array<Lead, 4> kLeads = {{{0x80, 0x00, 0, 0},
                                         {0xE0, 0xC0, 1, 0x80},
                                         {0xF0, 0xE0, 2, 0x800},
                                         {0xF8, 0xF0, 3, kFirstSupplementary}}};

// Takes one character off the front; one byte and nothing when the front is not UTF-8.
std::optional<char32_t> TakeCharacter(std::string_view& text) {
  const auto byteAt = [text](std::size_t at) { return static_cast<std::uint8_t>(text[at]); };
  const auto lead =
      std::ranges::find_if(kLeads, [&](const Lead& form) { return (byteAt(0) & form.mask) == form.bits; });
  bool valid = lead != kLeads.end() && text.size() > lead->followers;
  const std::size_t size = valid ? lead->followers + 1 : 1;
  char32_t character = valid ? byteAt(0) & static_cast<std::uint8_t>(~lead->mask) : 0;
  for (std::size_t at = 1; at < size; ++at) {
    valid = valid && (byteAt(at) & 0xC0) == 0x80;
    character = character << 6 | (byteAt(at) & 0x3Fu);
  }
  valid = valid && character >= lead->first && character <= kLastCharacter && !IsSurrogate(character);
  text.remove_prefix(valid ? size : 1);
  return valid ? std::optional(character) : std::nullopt;
}

void Append(XmlText& text, char32_t character) {
  if (character < kFirstSupplementary) {
    text += static_cast<XMLCh>(character);
    return;
  }
  const char32_t offset = character - kFirstSupplementary;
  text += static_cast<XMLCh>(0xD800 + (offset >> 10));
  text += static_cast<XMLCh>(0xDC00 + (offset & 0x3FF));
}

void Append(std::string& text, char32_t character) {
  const auto follower = [&](unsigned shift) {
    text += static_cast<char>(0x80 | (character >> shift & 0x3F));
  };
  if (character < 0x80) {
    text += static_cast<char>(character);
  } else if (character < 0x800) {
    text += static_cast<char>(0xC0 | character >> 6);
    follower(0);
  } else if (character < kFirstSupplementary) {
    text += static_cast<char>(0xE0 | character >> 12);
    follower(6);
    follower(0);
  } else {
    text += static_cast<char>(0xF0 | character >> 18);
    follower(12);
    follower(6);
    follower(0);
  }
}

}  // namespace

XmlText FromLocal(std::string_view text, bool* exact) {
  *exact = true;
  XmlText result;
  result.reserve(text.size());
  while (!text.empty()) {
    const auto character = TakeCharacter(text);
    if (!character) *exact = false;
    Append(result, character.value_or(kReplacement));
  }
  return result;
}

std::string ToLocal(XmlView text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    char32_t character = text[at];
    if (IsSurrogate(character)) {
      const bool paired = character < 0xDC00 && at + 1 < text.size() && (text[at + 1] & 0xFC00) == 0xDC00;
      character =
          paired ? kFirstSupplementary + ((character & 0x3FF) << 10 | (text[++at] & 0x3FFu)) : kReplacement;
    }
    Append(result, character);
  }
  return result;
}

}  // namespace NIg
