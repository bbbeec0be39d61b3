#include "ig/sequence_file_text.h"
#include "resources/print.h"

#include <algorithm>
#include <charconv>
#include <xercesc/util/XMLChar.hpp>

namespace NIg {

namespace {

constexpr std::string_view kStringPrefix = "string:";
constexpr std::string_view kHexPrefix = "0x";

// XML 1.0 has no escape for these, so not even a character reference can carry them.
bool IsCarried(XMLCh character) {
  constexpr XMLCh kSurrogates = 0xD800;  // come in pairs from FromLocal
  constexpr XMLCh kAfterSurrogates = 0xE000;
  return (character >= kSurrogates && character < kAfterSurrogates) ||
         xercesc::XMLChar1_0::isXMLChar(character);
}

std::string ByteArrayText(std::string_view bytes) {
  std::string text = "bytearr:";
  for (const char byte : bytes) text += NResources::Print("%02X", unsigned{static_cast<unsigned char>(byte)});
  return text;
}

bool IsBlank(char character) { return character == ' ' || (character >= '\t' && character <= '\r'); }

// What %X and %lu match: blanks, a sign, for %X a further prefix, digits.
std::optional<std::uint32_t> Scan(std::string_view text, int base) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  if (base == 16 && (text.starts_with("0x") || text.starts_with("0X"))) text.remove_prefix(kHexPrefix.size());
  std::uint32_t value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value, base);
  if (result.ec != std::errc()) return std::nullopt;
  return negative ? 0 - value : value;
}

}  // namespace

XmlText FromAscii(std::string_view text) { return {text.begin(), text.end()}; }

XmlText DataForFile(std::string_view data, bool* exact) {
  XmlText text = FromLocal(data, exact);
  if (*exact && std::ranges::all_of(text, IsCarried)) return text;
  // The same bytes leave on the bus; only their notation in the editor changes.
  if (data.starts_with(kStringPrefix)) {
    *exact = true;
    return FromAscii(ByteArrayText(data.substr(kStringPrefix.size())));
  }
  *exact = false;
  std::ranges::replace_if(
      text, [](XMLCh character) { return !IsCarried(character); }, XMLCh{u'?'});
  return text;
}

std::string NumberText(std::uint32_t value, NCanopen::Encoding encoding) {
  return NResources::Print(encoding == NCanopen::Encoding::Hexadecimal ? "0x%X" : "%lu", value);
}

std::optional<std::uint32_t> ParseNumberText(std::string_view text, NCanopen::Encoding encoding) {
  if (encoding == NCanopen::Encoding::Decimal) return Scan(text, 10);
  if (!text.starts_with(kHexPrefix)) return std::nullopt;
  return Scan(text.substr(kHexPrefix.size()), 16);
}

}  // namespace NIg
