// Item texts are in the ANSI code page of the system.
#include <windows.h>

#include "ig/sequence_file_text.h"

namespace NIg {

static_assert(sizeof(XMLCh) == sizeof(wchar_t));

namespace {

// One call for the size, one for the text; the sizes are those of a file's attribute and fit an int.
XmlText Convert(std::string_view text, DWORD flags) {
  const int count = static_cast<int>(text.size());
  const int needed = MultiByteToWideChar(CP_ACP, flags, text.data(), count, nullptr, 0);
  XmlText result(static_cast<std::size_t>(needed), XMLCh{});
  MultiByteToWideChar(CP_ACP, flags, text.data(), count, reinterpret_cast<wchar_t*>(result.data()), needed);
  return result;
}

}  // namespace

XmlText FromLocal(std::string_view text, bool* exact) {
  *exact = true;
  XmlText result = Convert(text, MB_ERR_INVALID_CHARS);
  if (!result.empty() || text.empty()) return result;
  *exact = false;
  return Convert(text, 0);
}

std::string ToLocal(XmlView text) {
  // A system may use UTF-8 as its ANSI code page; that lacks no character and allows neither of the two.
  const bool lacksCharacters = GetACP() != CP_UTF8;
  const DWORD flags = lacksCharacters ? WC_NO_BEST_FIT_CHARS : 0;
  const char* replacement = lacksCharacters ? "?" : nullptr;
  const auto* wide = reinterpret_cast<const wchar_t*>(text.data());
  const int count = static_cast<int>(text.size());
  const int needed = WideCharToMultiByte(CP_ACP, flags, wide, count, nullptr, 0, replacement, nullptr);
  std::string result(static_cast<std::size_t>(needed), '\0');
  WideCharToMultiByte(CP_ACP, flags, wide, count, result.data(), needed, replacement, nullptr);
  return result;
}

}  // namespace NIg
