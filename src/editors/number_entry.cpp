#include "editors/number_entry.h"

#include <limits>

#include "canopen/vocabulary.h"
#include "editors/integer_text.h"
#include "resources/print.h"
#include "resources/resource_ids.h"
#include "resources/text.h"

namespace NEditors {
namespace {

constexpr std::uint32_t kMaxStandardId = NCanopen::kStandardIdentifierMask;
constexpr std::uint32_t kMaxExtendedId = NCanopen::kIdentifierMask;

/// The two forms of a message: for decimal and for hexadecimal fields.
struct RangeMessage {
  std::uint32_t decimal;
  std::uint32_t hexadecimal;
};

constexpr RangeMessage kMaxMessage = {IDS_ENTRY_MAX, IDS_ENTRY_MAX_HEX};
constexpr RangeMessage kMinMessage = {IDS_ENTRY_MIN, IDS_ENTRY_MIN_HEX};
constexpr RangeMessage kRangeMessage = {IDS_ENTRY_RANGE, IDS_ENTRY_RANGE_HEX};

template <class... Bounds>
bool Fail(std::wstring& message, std::uint32_t id, Bounds... bounds) {
  message = NResources::Print(NResources::LoadText(id), bounds...);
  return false;
}

template <class Unsigned>
bool Parse(std::string_view text, bool hexadecimal, Unsigned& value, std::wstring& message) {
  const auto base = hexadecimal ? NumberBase::Hexadecimal : NumberBase::Decimal;
  const auto number = ReadUnsigned(text, base, std::numeric_limits<Unsigned>::max());
  if (!number) return Fail(message, IDS_ENTRY_SYNTAX);
  value = static_cast<Unsigned>(*number);
  return true;
}

// Parses and tests the bounds; `shown` are the bounds that the message names.
template <class Unsigned, class... Shown>
bool Check(std::string_view text, bool hexadecimal, Unsigned& value, Unsigned min, Unsigned max,
           std::wstring& message, RangeMessage texts, Shown... shown) {
  Unsigned number = 0;
  if (!Parse(text, hexadecimal, number, message)) return false;
  if (number < min || number > max) {
    return Fail(message, hexadecimal ? texts.hexadecimal : texts.decimal, std::uint32_t{shown}...);
  }
  value = number;
  return true;
}

template <class Unsigned>
constexpr Unsigned kMost = std::numeric_limits<Unsigned>::max();

std::string TrimmedLowerCase(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\n\v\f\r";
  const auto first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  std::string result(text.substr(first, text.find_last_not_of(kBlanks) - first + 1));
  for (char& character : result) {
    if (character >= 'A' && character <= 'Z') character = static_cast<char>(character - 'A' + 'a');
  }
  return result;
}

}  // namespace

bool ParseNumber(std::string_view text, bool hexadecimal, std::uint16_t& value, std::wstring& message) {
  return Parse(text, hexadecimal, value, message);
}

bool ParseNumber(std::string_view text, bool hexadecimal, std::uint32_t& value, std::wstring& message) {
  return Parse(text, hexadecimal, value, message);
}

bool CheckMax(std::string_view text, bool hexadecimal, std::uint16_t& value, std::uint16_t max,
              std::wstring& message) {
  return Check(text, hexadecimal, value, std::uint16_t{0}, max, message, kMaxMessage, max);
}

bool CheckMax(std::string_view text, bool hexadecimal, std::uint32_t& value, std::uint32_t max,
              std::wstring& message) {
  return Check(text, hexadecimal, value, std::uint32_t{0}, max, message, kMaxMessage, max);
}

bool CheckMin(std::string_view text, bool hexadecimal, std::uint16_t& value, std::uint16_t min,
              std::wstring& message) {
  return Check(text, hexadecimal, value, min, kMost<std::uint16_t>, message, kMinMessage, min);
}

bool CheckMin(std::string_view text, bool hexadecimal, std::uint32_t& value, std::uint32_t min,
              std::wstring& message) {
  return Check(text, hexadecimal, value, min, kMost<std::uint32_t>, message, kMinMessage, min);
}

bool CheckRange(std::string_view text, bool hexadecimal, std::uint16_t& value, std::uint16_t min,
                std::uint16_t max, std::wstring& message) {
  return Check(text, hexadecimal, value, min, max, message, kRangeMessage, min, max);
}

bool CheckRange(std::string_view text, bool hexadecimal, std::uint32_t& value, std::uint32_t min,
                std::uint32_t max, std::wstring& message) {
  return Check(text, hexadecimal, value, min, max, message, kRangeMessage, min, max);
}

bool ParseCanId(std::string_view text, std::uint32_t& identifier, std::wstring& message,
                bool extendedAllowed) {
  std::string digits = TrimmedLowerCase(text);
  if (digits.find('-') != std::string::npos) return Fail(message, IDS_ENTRY_SYNTAX);
  const bool extended = digits.ends_with('x');
  if (extended && !extendedAllowed) return Fail(message, IDS_ENTRY_MAX_HEX, kMaxStandardId);
  while (digits.ends_with('x')) digits.pop_back();
  const auto number = ReadUnsigned(digits, NumberBase::Hexadecimal, kMost<std::uint32_t>);
  if (!number) return Fail(message, IDS_ENTRY_SYNTAX);
  const auto value = static_cast<std::uint32_t>(*number);
  if (extended) {
    if (value > kMaxExtendedId) return Fail(message, IDS_ENTRY_CAN_ID_MAX_EXTENDED, kMaxExtendedId);
    identifier = value | NCanopen::kCobIdExtended;
  } else {
    if (value > kMaxStandardId) return Fail(message, IDS_ENTRY_CAN_ID_MAX_STANDARD, kMaxStandardId);
    identifier = value;
  }
  return true;
}

}  // namespace NEditors
