#include <windows.h>

#include "com/module_scope.h"
#include "resources/find_text.h"

namespace NResources {

std::wstring FindLanguageText(void* library, std::uint32_t id) {
  // LoadStringW looks at the low 16 bits alone.
  if (id > 0xFFFF) return {};
  // With a buffer of size 0 the answer is a pointer to the text in the resource itself, which has no end
  // mark.
  const wchar_t* text = nullptr;
  const int size = LoadStringW(static_cast<HINSTANCE>(library), id, reinterpret_cast<wchar_t*>(&text), 0);
  return size > 0 ? std::wstring(text, static_cast<std::size_t>(size)) : std::wstring();
}

std::wstring FindOwnText(std::uint32_t id) { return FindLanguageText(NCom::ModuleHandle(), id); }

}  // namespace NResources
