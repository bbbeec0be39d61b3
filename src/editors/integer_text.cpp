#include "editors/integer_text.h"

#include <charconv>

namespace NEditors {
namespace {

constexpr std::string_view kBlanks = " \t\n\v\f\r";

void SkipBlanks(std::string_view& text) {
  const auto first = text.find_first_not_of(kBlanks);
  text.remove_prefix(first == std::string_view::npos ? text.size() : first);
}

bool Skip(std::string_view& text, char wanted) {
  if (!text.starts_with(wanted)) return false;
  text.remove_prefix(1);
  return true;
}

// Takes the prefix that tells the base off the text. An octal number keeps its "0": it may be all there is.
int TakeBase(std::string_view& text, NumberBase base) {
  if (base == NumberBase::Decimal) return 10;
  if (HasHexadecimalPrefix(text)) {
    text.remove_prefix(2);
    return 16;
  }
  if (base == NumberBase::Hexadecimal) return 16;
  return text.starts_with('0') ? 8 : 10;
}

// Digits alone, all of them.
std::optional<std::uint64_t> ReadMagnitude(std::string_view text, NumberBase base) {
  const int digits = TakeBase(text, base);
  std::uint64_t value = 0;
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value, digits);
  if (error != std::errc() || stop != end) return std::nullopt;
  return value;
}

}  // namespace

std::optional<std::uint64_t> ReadUnsigned(std::string_view text, NumberBase base, std::uint64_t max) {
  SkipBlanks(text);
  Skip(text, '+');
  const auto value = ReadMagnitude(text, base);
  return value && *value <= max ? value : std::nullopt;
}

std::optional<std::int64_t> ReadSigned(std::string_view text) {
  SkipBlanks(text);
  const bool negative = Skip(text, '-');
  if (!negative) Skip(text, '+');
  const auto magnitude = ReadMagnitude(text, NumberBase::Automatic);
  const std::uint64_t limit = static_cast<std::uint64_t>(INT64_MAX) + (negative ? 1 : 0);
  if (!magnitude || *magnitude > limit) return std::nullopt;
  return static_cast<std::int64_t>(negative ? 0 - *magnitude : *magnitude);
}

bool HasHexadecimalPrefix(std::string_view text) { return text.starts_with("0x") || text.starts_with("0X"); }

}  // namespace NEditors
