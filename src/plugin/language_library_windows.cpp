#include <windows.h>

#include "plugin/language_library.h"

namespace NPlugin {

// Nothing in it is run.
void* LoadLanguageLibrary(const std::filesystem::path& file) {
  return LoadLibraryExW(file.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE);
}

void FreeLanguageLibrary(void* library) { FreeLibrary(static_cast<HMODULE>(library)); }

}  // namespace NPlugin
