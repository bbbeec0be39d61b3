#pragma once
// Conversions of text at the edges of the module. All are total: what cannot be converted becomes a
// replacement character, nothing fails (but std::bad_alloc, and std::length_error beyond 2 GiB on Windows).

#include <filesystem>
#include <string>
#include <string_view>

namespace NCommon {

/// Item text (8-bit: UTF-8, on Windows the ANSI code page) to wide text.
std::wstring ToWide(std::string_view itemText);
/// Wide text to item text.
std::string ToItemText(std::wstring_view text);

/// Path that an item text names. Where paths are bytes they are taken as they are.
std::filesystem::path ItemTextToPath(std::string_view itemText);
/// The reverse.
std::string PathToItemText(const std::filesystem::path& path);

/// Path that wide text names. Where paths are bytes they are UTF-8; std::filesystem::path itself would refuse
/// every character beyond ASCII there.
std::filesystem::path WideToPath(std::wstring_view text);
/// The reverse.
std::wstring PathToWide(const std::filesystem::path& path);

/// UTF-8 to wide text (UTF-16 or UTF-32, as wide as wchar_t is). Each ill-formed sequence becomes one U+FFFD:
/// a truncated one as far as it could have become a character, any other byte by itself.
std::wstring FromUtf8(std::string_view text);
/// Wide text to UTF-8. Lone surrogates and what lies beyond U+10FFFF become U+FFFD.
std::string ToUtf8(std::wstring_view text);

}  // namespace NCommon
