#include "common/scan_integer.h"

namespace NCommon {
namespace {

constexpr std::uint32_t kNoDigit = 99;

std::uint32_t DigitOf(char character) {
  if (character >= '0' && character <= '9') return static_cast<std::uint32_t>(character - '0');
  if (character >= 'a' && character <= 'f') return static_cast<std::uint32_t>(character - 'a' + 10);
  if (character >= 'A' && character <= 'F') return static_cast<std::uint32_t>(character - 'A' + 10);
  return kNoDigit;
}

bool StartsWithDigit(std::string_view text, std::uint32_t base) {
  return !text.empty() && DigitOf(text.front()) < base;
}

std::uint32_t TakeBase(std::string_view& text, ScanBase base) {
  if (base == ScanBase::Decimal || !text.starts_with('0')) return 10;
  if (!text.starts_with("0x") && !text.starts_with("0X")) return 8;
  text.remove_prefix(2);
  return 16;
}

}  // namespace

std::optional<std::uint32_t> ScanInteger(std::string_view& text, ScanBase base) {
  const auto start = text.find_first_not_of(" \t\n\v\f\r");
  text.remove_prefix(start == std::string_view::npos ? text.size() : start);
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  const std::uint32_t digits = TakeBase(text, base);
  if (!StartsWithDigit(text, digits)) return std::nullopt;
  std::uint32_t value = 0;
  while (StartsWithDigit(text, digits)) {
    value = value * digits + DigitOf(text.front());
    text.remove_prefix(1);
  }
  return negative ? 0 - value : value;
}

}  // namespace NCommon
