#include <windows.h>

#include <stdexcept>

#include "host/runtime/shared_library.h"
#include "host/runtime/text.h"

namespace NRuntime {
namespace {

std::string Reason(DWORD error) {
  if (error == ERROR_BAD_EXE_FORMAT) return "not a library for this system";
  wchar_t text[512] = {};
  const DWORD flags =
      FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK;
  const DWORD size = FormatMessageW(flags, nullptr, error, 0, text, 512, nullptr);
  std::string reason = ToUtf8(std::wstring_view(text, size));
  while (!reason.empty() && (reason.back() == ' ' || reason.back() == '.')) reason.pop_back();
  return reason.empty() ? "error " + std::to_string(error) : reason;
}

}  // namespace

const char* const kSharedLibrarySuffix = ".dll";

SharedLibrary::SharedLibrary(const std::filesystem::path& path) {
  // No message boxes of the system about a broken library.
  const UINT mode = SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
  mHandle = LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  const DWORD error = GetLastError();
  SetErrorMode(mode);
  if (!mHandle) throw std::runtime_error(Reason(error));
}

SharedLibrary::~SharedLibrary() {
  if (mHandle) FreeLibrary(static_cast<HMODULE>(mHandle));
}

SharedLibrary::Address SharedLibrary::FindAddress(const char* name) const {
  return reinterpret_cast<Address>(GetProcAddress(static_cast<HMODULE>(mHandle), name));
}

}  // namespace NRuntime
