#include "host/codescrldr/data_types.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>

#include "host/codescrldr/ini_text.h"
#include "host/runtime/text.h"

namespace NDescriptions {
namespace {

constexpr std::string_view kNodeId = "$NODEID";
constexpr std::uint32_t kFirstOwnType = 0x40;  // types that device or profile define
constexpr std::uint32_t kLastOwnType = 0x25F;

constexpr DataTypeRow kTypes[] = {
    {0x01, "BOOLEAN", 1, ValueKind::Unsigned},
    {0x02, "INTEGER8", 1, ValueKind::Signed},
    {0x03, "INTEGER16", 2, ValueKind::Signed},
    {0x04, "INTEGER32", 4, ValueKind::Signed},
    {0x05, "UNSIGNED8", 1, ValueKind::Unsigned},
    {0x06, "UNSIGNED16", 2, ValueKind::Unsigned},
    {0x07, "UNSIGNED32", 4, ValueKind::Unsigned},
    {0x08, "REAL32", 4, ValueKind::Real},
    {0x09, "VISIBLE_STRING", 0, ValueKind::Text},
    {0x0A, "OCTET_STRING", 0, ValueKind::Octets},
    {0x0B, "UNICODE_STRING", 0, ValueKind::Unicode},
    {0x0C, "TIME_OF_DAY", 6, ValueKind::Unsigned},
    {0x0D, "TIME_DIFFERENCE", 6, ValueKind::Unsigned},
    {0x0F, "DOMAIN", 0, ValueKind::Octets},
    {0x10, "INTEGER24", 3, ValueKind::Signed},
    {0x11, "REAL64", 8, ValueKind::Real},
    {0x12, "INTEGER40", 5, ValueKind::Signed},
    {0x13, "INTEGER48", 6, ValueKind::Signed},
    {0x14, "INTEGER56", 7, ValueKind::Signed},
    {0x15, "INTEGER64", 8, ValueKind::Signed},
    {0x16, "UNSIGNED24", 3, ValueKind::Unsigned},
    {0x18, "UNSIGNED40", 5, ValueKind::Unsigned},
    {0x19, "UNSIGNED48", 6, ValueKind::Unsigned},
    {0x1A, "UNSIGNED56", 7, ValueKind::Unsigned},
    {0x1B, "UNSIGNED64", 8, ValueKind::Unsigned},
    {0x20, "PDO_COMMUNICATION_PARAMETER", 0, ValueKind::Unknown},
    {0x21, "PDO_MAPPING", 0, ValueKind::Unknown},
    {0x22, "SDO_PARAMETER", 0, ValueKind::Unknown},
    {0x23, "IDENTITY", 0, ValueKind::Unknown},
    {0x24, "DEBUGGER_PAR", 0, ValueKind::Unknown},
    {0x25, "COMMAND_PAR", 0, ValueKind::Unknown},
};

constexpr DataTypeRow kOwnType = {kFirstOwnType, "DEVICE_SPECIFIC", 0, ValueKind::Unknown};

ValueKind KindOf(std::uint32_t type) {
  const DataTypeRow* const row = FindDataType(type);
  return row ? row->kind : ValueKind::Unknown;
}

bool ParseDigits(std::string_view digits, int base, std::uint64_t& number) {
  const char* const end = digits.data() + digits.size();
  const auto [stopped, error] = std::from_chars(digits.data(), end, number, base);
  return !digits.empty() && error == std::errc() && stopped == end;
}

bool StartsHexadecimal(std::string_view text) { return text.starts_with("0x") || text.starts_with("0X"); }

bool ParseLiteral(std::string_view text, NumberText& number) {
  if (text.starts_with('-')) {
    number.isNegative = true;
    text = Trimmed(text.substr(1));
  }
  if (StartsHexadecimal(text)) return ParseDigits(text.substr(2), 16, number.magnitude);
  const bool looksOctal = text.size() > 1 && text[0] == '0';
  if (looksOctal && ParseDigits(text, 8, number.magnitude)) return true;
  number.isOddOctal = looksOctal;
  return ParseDigits(text, 10, number.magnitude);
}

std::optional<std::vector<std::uint8_t>> ReadOctets(std::string_view text) {
  std::vector<std::uint8_t> bytes;
  while (!(text = Trimmed(text)).empty()) {
    std::uint64_t byte = 0;
    if (text.size() < 2 || !ParseDigits(text.substr(0, 2), 16, byte)) return std::nullopt;
    bytes.push_back(static_cast<std::uint8_t>(byte));
    text.remove_prefix(2);
  }
  return bytes;
}

std::vector<std::uint8_t> Utf16(std::string_view text) {
  std::vector<std::uint8_t> bytes;
  const auto add = [&](std::uint32_t unit) {
    bytes.push_back(static_cast<std::uint8_t>(unit));
    bytes.push_back(static_cast<std::uint8_t>(unit >> 8));
  };
  for (const wchar_t c : NRuntime::ToWide(text)) {
    const auto code = static_cast<char32_t>(c);
    if (code >= 0x10000) add(0xD800 + ((code - 0x10000) >> 10));
    add(code >= 0x10000 ? 0xDC00 + (code & 0x3FF) : code);
  }
  return bytes;
}

std::vector<std::uint8_t> LittleEndian(std::uint64_t bits, std::uint32_t size) {
  std::vector<std::uint8_t> bytes(size);
  for (std::uint32_t i = 0; i < size; ++i) bytes[i] = static_cast<std::uint8_t>(bits >> (8 * i));
  return bytes;
}

}  // namespace

const DataTypeRow* FindDataType(std::uint32_t code) {
  if (code >= kFirstOwnType && code <= kLastOwnType) return &kOwnType;
  const auto row = std::find_if(std::begin(kTypes), std::end(kTypes),
                                [&](const DataTypeRow& one) { return one.code == code; });
  return row == std::end(kTypes) ? nullptr : row;
}

std::string_view Unquoted(std::string_view text) {
  if (text.size() >= 2 && text.front() == '"' && text.back() == '"') return text.substr(1, text.size() - 2);
  return text;
}

std::optional<std::uint64_t> NumberText::With(std::optional<std::uint32_t> nodeId) const {
  if (!hasNodeId) return isNegative ? std::uint64_t{0} - magnitude : magnitude;
  if (!nodeId || isNegative || magnitude > ~std::uint64_t{0} - *nodeId) return std::nullopt;
  return magnitude + *nodeId;
}

std::optional<NumberText> ParseNumber(std::string_view text) {
  text = Trimmed(text.substr(0, text.find(';')));
  NumberText number;
  const std::size_t plus = text.find('+', 1);
  const std::string_view first = Trimmed(text.substr(0, plus));
  if (plus == std::string_view::npos) {
    number.hasNodeId = IsSameWord(text, kNodeId);
    if (number.hasNodeId || ParseLiteral(text.starts_with('+') ? text.substr(1) : text, number))
      return number;
    return std::nullopt;
  }
  const std::string_view second = Trimmed(text.substr(plus + 1));
  const bool isFirst = IsSameWord(first, kNodeId);
  if (!isFirst && !IsSameWord(second, kNodeId)) return std::nullopt;
  number.hasNodeId = true;
  return ParseLiteral(isFirst ? second : first, number) && !number.isNegative ? std::optional(number)
                                                                              : std::nullopt;
}

// Negative numbers may be given as the two's complement of their type.
std::optional<IntegerValue> ReadInteger(std::uint32_t type, std::string_view text,
                                        std::optional<std::uint32_t> nodeId) {
  const ValueKind kind = KindOf(type);
  if (kind != ValueKind::Signed && kind != ValueKind::Unsigned) return std::nullopt;
  const auto number = ParseNumber(text);
  const auto bits = number ? number->With(nodeId) : std::nullopt;
  if (!bits) return std::nullopt;
  const std::uint32_t width = 8 * FindDataType(type)->size;
  const std::uint64_t mask = width < 64 ? (std::uint64_t{1} << width) - 1 : ~std::uint64_t{0};
  const std::uint64_t signBit = std::uint64_t{1} << (width - 1);
  IntegerValue value;
  value.fits = number->isNegative ? kind == ValueKind::Signed && number->magnitude <= signBit : *bits <= mask;
  value.bits = *bits & mask;
  if (kind == ValueKind::Signed && (value.bits & signBit) != 0) value.bits |= ~mask;
  return value;
}

std::optional<double> ReadReal(std::uint32_t type, std::string_view text) {
  if (KindOf(type) != ValueKind::Real) return std::nullopt;
  text = Trimmed(text.substr(0, text.find(';')));
  const bool isWide = FindDataType(type)->size == sizeof(double);
  std::uint64_t bits = 0;
  if (StartsHexadecimal(text)) {
    if (!ParseDigits(text.substr(2), 16, bits) || (!isWide && bits > 0xFFFFFFFF)) return std::nullopt;
    return isWide ? std::bit_cast<double>(bits) : std::bit_cast<float>(static_cast<std::uint32_t>(bits));
  }
  if (text.starts_with('+')) text.remove_prefix(1);
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  const bool fits = isWide || !std::isfinite(value) || std::abs(value) <= std::numeric_limits<float>::max();
  return fits ? std::optional(value) : std::nullopt;
}

std::optional<std::vector<std::uint8_t>> ReadBytes(std::uint32_t type, std::string_view text,
                                                   std::optional<std::uint32_t> nodeId) {
  const DataTypeRow* const row = FindDataType(type);
  if (!row) return std::nullopt;
  const std::string_view plain = Unquoted(text);
  switch (row->kind) {
    case ValueKind::Text:
      return std::vector<std::uint8_t>(plain.begin(), plain.end());
    case ValueKind::Unicode:
      return Utf16(plain);
    case ValueKind::Octets:
      return ReadOctets(plain);
    case ValueKind::Real: {
      const auto real = ReadReal(type, text);
      if (!real) return std::nullopt;
      const bool isWide = row->size == sizeof(double);
      return LittleEndian(isWide ? std::bit_cast<std::uint64_t>(*real)
                                 : std::bit_cast<std::uint32_t>(static_cast<float>(*real)),
                          row->size);
    }
    case ValueKind::Signed:
    case ValueKind::Unsigned: {
      const auto integer = ReadInteger(type, text, nodeId);
      return integer ? std::optional(LittleEndian(integer->bits, row->size)) : std::nullopt;
    }
    case ValueKind::Unknown:
      break;
  }
  return std::nullopt;
}

}  // namespace NDescriptions
