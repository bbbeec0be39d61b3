#pragma once
// One source file per platform: a file that one process holds as long as it is there.

#include <cstdint>
#include <filesystem>
#include <utility>

namespace NWorkbench {

/// The system lets go of it when the process ends, whatever way it ends.
class FileLock {
 public:
  FileLock() = default;
  FileLock(FileLock&& other) noexcept : mFile(std::exchange(other.mFile, kNone)) {}
  FileLock& operator=(FileLock&& other) noexcept {
    std::swap(mFile, other.mFile);
    return *this;
  }
  ~FileLock() { Release(); }

  /// Makes the file where it is not there. False: somebody else holds it, or it cannot be made.
  bool Take(const std::filesystem::path& file);
  void Release();
  bool IsTaken() const { return mFile != kNone; }

 private:
  static constexpr std::intptr_t kNone = -1;
  std::intptr_t mFile = kNone;  // as the system names open files
};

}  // namespace NWorkbench
