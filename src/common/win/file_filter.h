#pragma once

#include <algorithm>
#include <string>

namespace NCommon {

/// The filter of a file dialog as the system wants it, from the text that users read, with bars between the
/// parts and at its end.
inline std::wstring FileFilter(std::wstring text) {
  std::ranges::replace(text, L'|', L'\0');
  return text;
}

}  // namespace NCommon
