#include "common/win/resources.h"

#include "com/module_scope.h"
#include "resources/text.h"

namespace NCommon {

HINSTANCE LibraryOf(const wchar_t* type, int id) {
  const auto language = static_cast<HINSTANCE>(NResources::LanguageLibrary());
  if (language && FindResourceW(language, MAKEINTRESOURCEW(id), type)) return language;
  return static_cast<HINSTANCE>(NCom::ModuleHandle());
}

HMENU LoadOwnMenu(int id) { return LoadMenuW(LibraryOf(RT_MENU, id), MAKEINTRESOURCEW(id)); }

}  // namespace NCommon
