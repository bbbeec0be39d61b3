#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace NCommon {

enum class ScanBase {
  Decimal,    ///< as scanf's %d reads
  Automatic,  ///< as scanf's %i reads: "0x" hexadecimal, another leading "0" octal
};

/// Takes a whole number with optional sign, and the blanks before it, off the front of the text. Empty
/// result: there is none. A number beyond 32 bits keeps its low 32 bits, a negative one is its two's
/// complement.
std::optional<std::uint32_t> ScanInteger(std::string_view& text, ScanBase base);

}  // namespace NCommon
