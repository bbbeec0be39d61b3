#pragma once
// Text at the border of the host: UTF-8 inside and in files, wide text in COM methods.

#include <filesystem>
#include <string>
#include <string_view>

namespace NRuntime {

/// Both conversions put U+FFFD in the place of what is malformed.
std::wstring ToWide(std::string_view utf8);
std::string ToUtf8(std::wstring_view wide);

/// A path from text of the command line or a configuration, and back for messages. On Linux the bytes pass
/// unchanged.
std::filesystem::path ToPath(std::string_view utf8);
std::string PathText(const std::filesystem::path& path);
/// As COM methods and windows take it.
std::wstring WidePathText(const std::filesystem::path& path);

}  // namespace NRuntime
