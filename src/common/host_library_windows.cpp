#include <windows.h>

#include <string>

#include "com/module_scope.h"
#include "common/host_library.h"

namespace NCommon {
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

HostLibrary::HostLibrary(const std::wstring& name)
    : mFile(HostProgram().parent_path() / (name + L"." + kLibraryExtension)),
      mHandle(LoadLibraryW(mFile.c_str())) {}

HostLibrary::~HostLibrary() {
  if (mHandle) FreeLibrary(static_cast<HMODULE>(mHandle));
}

HostLibrary::Address HostLibrary::FindAddress(const char* name) const {
  return reinterpret_cast<Address>(GetProcAddress(static_cast<HMODULE>(mHandle), name));
}

}  // namespace NCommon
