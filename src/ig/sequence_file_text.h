#pragma once
// Texts of a sequence file: 8-bit item texts against XML's UTF-16, numbers against their written form.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <xercesc/util/XercesDefs.hpp>

#include "canopen/item_kinds.h"

namespace NIg {

using XmlText = std::basic_string<XMLCh>;
using XmlView = std::basic_string_view<XMLCh>;

/// From ASCII: names, numbers.
XmlText FromAscii(std::string_view text);

/// From the local code page (UTF-8 but for Windows). What is no character there becomes "?"; `*exact` tells
/// whether that was needed.
XmlText FromLocal(std::string_view text, bool* exact);

/// To the local code page. What it does not have becomes "?".
std::string ToLocal(XmlView text);

/// Data text as a sequence file can hold it. `*exact` is false when characters had to be replaced.
XmlText DataForFile(std::string_view data, bool* exact);

/// "0x%X" or "%lu".
std::string NumberText(std::uint32_t value, NCanopen::Encoding encoding);

/// Reads a number as scanf does with the pattern: "%lu" skips blanks, "0x%X" requires its prefix (lower case,
/// at the very start); a sign is taken, and what follows the number does not matter. Nothing when the text
/// does not match or the number needs more than 32 bits.
std::optional<std::uint32_t> ParseNumberText(std::string_view text, NCanopen::Encoding encoding);

}  // namespace NIg
