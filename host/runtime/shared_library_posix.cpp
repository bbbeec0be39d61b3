#include <dlfcn.h>

#include <stdexcept>

#include "host/runtime/shared_library.h"

namespace NRuntime {
namespace {

// The loader's text opens with the path, which the caller names itself.
std::string Reason(const std::string& path) {
  const char* error = dlerror();
  std::string text = error ? error : "unknown reason";
  if (text.rfind(path + ": ", 0) == 0) text.erase(0, path.size() + 2);
  return text;
}

}  // namespace

const char* const kSharedLibrarySuffix = ".so";

SharedLibrary::SharedLibrary(const std::filesystem::path& path)
    : mHandle(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (!mHandle) throw std::runtime_error(Reason(path.native()));
}

SharedLibrary::~SharedLibrary() {
  if (mHandle) dlclose(mHandle);
}

SharedLibrary::Address SharedLibrary::FindAddress(const char* name) const {
  return reinterpret_cast<Address>(dlsym(mHandle, name));
}

}  // namespace NRuntime
