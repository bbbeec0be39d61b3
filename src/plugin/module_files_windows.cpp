#include <windows.h>

#include <string>

#include "com/module_scope.h"
#include "plugin/module_files.h"

namespace NPlugin {
namespace {

std::filesystem::path FileOf(HMODULE module) {
  constexpr std::size_t kLongest = 0x8000;
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD size = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
    if (size < path.size()) {
      path.resize(size);
      return path;
    }
    if (path.size() >= kLongest) return {};
    path.resize(path.size() * 2);
  }
}

}  // namespace

const wchar_t kLibraryExtension[] = L"dll";

std::filesystem::path ModuleFile() { return FileOf(static_cast<HMODULE>(NCom::ModuleHandle())); }
std::filesystem::path HostProgram() { return FileOf(nullptr); }

// Nothing in it is run.
void* LoadLanguageLibrary(const std::filesystem::path& file) {
  return LoadLibraryExW(file.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE);
}

void FreeLanguageLibrary(void* library) { FreeLibrary(static_cast<HMODULE>(library)); }

}  // namespace NPlugin
