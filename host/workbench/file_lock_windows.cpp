#include <windows.h>

#include "host/workbench/file_lock.h"

namespace NWorkbench {

// Nobody else may open it meanwhile.
bool FileLock::Take(const std::filesystem::path& file) {
  Release();
  const HANDLE opened =
      CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (opened != INVALID_HANDLE_VALUE) mFile = reinterpret_cast<std::intptr_t>(opened);
  return IsTaken();
}

void FileLock::Release() {
  if (IsTaken()) CloseHandle(reinterpret_cast<HANDLE>(std::exchange(mFile, kNone)));
}

}  // namespace NWorkbench
