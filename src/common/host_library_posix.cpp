#include <dlfcn.h>

#include "common/host_library.h"

namespace NCommon {

const wchar_t kLibraryExtension[] = L"so";

std::filesystem::path ModuleFile() {
  Dl_info info{};
  std::error_code ignored;
  if (dladdr(reinterpret_cast<const void*>(&ModuleFile), &info) == 0 || !info.dli_fname) return {};
  return std::filesystem::absolute(info.dli_fname, ignored);
}

std::filesystem::path HostProgram() {
  std::error_code ignored;
  return std::filesystem::read_symlink("/proc/self/exe", ignored);
}

HostLibrary::HostLibrary(const std::wstring& name)
    : mFile(HostProgram().parent_path() / (name + L"." + kLibraryExtension)),
      mHandle(dlopen(mFile.c_str(), RTLD_NOW | RTLD_LOCAL)) {}

HostLibrary::~HostLibrary() {
  if (mHandle) dlclose(mHandle);
}

HostLibrary::Address HostLibrary::FindAddress(const char* name) const {
  return reinterpret_cast<Address>(dlsym(mHandle, name));
}

}  // namespace NCommon
