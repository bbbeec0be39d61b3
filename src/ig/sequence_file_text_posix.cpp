// Item texts are UTF-8, whatever the locale of the process.
#include "common/text.h"
#include "ig/sequence_file_text.h"

namespace NIg {

static_assert(sizeof(wchar_t) == sizeof(char32_t), "a wide character is one of Unicode");

namespace {

constexpr wchar_t kReplacement = 0xFFFD;  // what the conversions put in the place of what is malformed

void Append(XmlText& text, wchar_t character) {
  if (character <= 0xFFFF) {
    text += static_cast<XMLCh>(character);
    return;
  }
  const auto offset = static_cast<char32_t>(character) - 0x10000;
  text += static_cast<XMLCh>(0xD800 + (offset >> 10));
  text += static_cast<XMLCh>(0xDC00 + (offset & 0x3FF));
}

bool IsSurrogate(XMLCh unit) { return (unit & 0xF800) == 0xD800; }
bool IsPair(XMLCh first, XMLCh second) { return (first & 0xFC00) == 0xD800 && (second & 0xFC00) == 0xDC00; }

}  // namespace

XmlText FromLocal(std::string_view text, bool* exact) {
  const std::wstring wide = NCommon::FromUtf8(text);
  *exact = NCommon::ToUtf8(wide) == text;
  XmlText result;
  result.reserve(wide.size());
  for (const wchar_t character : wide) Append(result, *exact || character != kReplacement ? character : L'?');
  return result;
}

std::string ToLocal(XmlView text) {
  std::wstring wide;
  wide.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    const XMLCh unit = text[at];
    if (at + 1 < text.size() && IsPair(unit, text[at + 1])) {
      wide += static_cast<wchar_t>(0x10000 + ((unit & 0x3FF) << 10) + (text[++at] & 0x3FF));
    } else {
      wide += IsSurrogate(unit) ? L'?' : static_cast<wchar_t>(unit);
    }
  }
  return NCommon::ToUtf8(wide);
}

}  // namespace NIg
