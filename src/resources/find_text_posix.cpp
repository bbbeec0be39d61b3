#include <dlfcn.h>

#include "resources/find_text.h"
#include "resources/string_table.h"

namespace NResources {

std::wstring FindOwnText(std::uint32_t id) {
  const wchar_t* text = FindInStringTable(id);
  return text ? text : std::wstring();
}

std::wstring FindLanguageText(void* library, std::uint32_t id) {
  using LanguageText = const wchar_t* (*)(std::uint32_t);
  const auto find = reinterpret_cast<LanguageText>(dlsym(library, "OstrelLanguageText"));
  const wchar_t* text = find ? find(id) : nullptr;
  return text ? text : std::wstring();
}

}  // namespace NResources
