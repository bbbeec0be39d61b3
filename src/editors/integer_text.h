#pragma once
// Integers as a C++ stream or strtoull reads them, without a locale and without their silent wrap of negative
// numbers in unsigned fields.

#include <cstdint>
#include <optional>
#include <string_view>

namespace NEditors {

enum class NumberBase {
  Automatic,  ///< "0x" or "0X" hexadecimal, another leading "0" octal, else decimal
  Decimal,
  Hexadecimal,  ///< "0x" or "0X" may stand in front
};

/// Reads the whole text as a number from 0 to `max`. Blanks and one "+" may stand in front, nothing behind. A
/// "-" is refused even before a 0: whoever types -1 into a field for unsigned numbers does not mean
/// 4294967295. Empty result: no such number.
std::optional<std::uint64_t> ReadUnsigned(std::string_view text, NumberBase base,
                                          std::uint64_t max = UINT64_MAX);

/// Reads the whole text as a signed number of automatic base; blanks and one "+" or "-" may stand in front.
std::optional<std::int64_t> ReadSigned(std::string_view text);

/// Whether the text begins with "0x" or "0X".
bool HasHexadecimalPrefix(std::string_view text);

}  // namespace NEditors
