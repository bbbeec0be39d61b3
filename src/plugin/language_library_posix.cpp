#include "plugin/language_library.h"

#include <dlfcn.h>

namespace NPlugin {

void* LoadLanguageLibrary(const std::filesystem::path& file) {
  return dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
}

void FreeLanguageLibrary(void* library) { dlclose(library); }

}  // namespace NPlugin
