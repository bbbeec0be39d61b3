#include <dlfcn.h>

#include "plugin/module_files.h"

namespace NPlugin {

const wchar_t kLibraryExtension[] = L"so";

std::filesystem::path ModuleFile() {
  Dl_info info{};
  const auto here = reinterpret_cast<const void*>(&ModuleFile);
  std::error_code ignored;
  if (dladdr(here, &info) == 0 || !info.dli_fname) return {};
  return std::filesystem::absolute(info.dli_fname, ignored);
}

std::filesystem::path HostProgram() {
  std::error_code ignored;
  return std::filesystem::read_symlink("/proc/self/exe", ignored);
}

void* LoadLanguageLibrary(const std::filesystem::path& file) {
  return dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
}

void FreeLanguageLibrary(void* library) { dlclose(library); }

}  // namespace NPlugin
