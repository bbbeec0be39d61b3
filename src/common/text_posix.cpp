#include "common/text.h"

namespace NCommon {

std::wstring ToWide(std::string_view itemText) { return FromUtf8(itemText); }
std::string ToItemText(std::wstring_view text) { return ToUtf8(text); }

std::filesystem::path ItemTextToPath(std::string_view itemText) { return itemText; }
std::string PathToItemText(const std::filesystem::path& path) { return path.native(); }

std::filesystem::path WideToPath(std::wstring_view text) { return ToUtf8(text); }
std::wstring PathToWide(const std::filesystem::path& path) { return FromUtf8(path.native()); }

}  // namespace NCommon
