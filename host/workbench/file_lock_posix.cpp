#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "host/workbench/file_lock.h"

namespace NWorkbench {

bool FileLock::Take(const std::filesystem::path& file) {
  Release();
  const int opened = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (opened < 0) return false;
  if (::flock(opened, LOCK_EX | LOCK_NB) == 0) {
    mFile = opened;
  } else {
    ::close(opened);
  }
  return IsTaken();
}

void FileLock::Release() {
  if (IsTaken()) ::close(static_cast<int>(std::exchange(mFile, kNone)));
}

}  // namespace NWorkbench
