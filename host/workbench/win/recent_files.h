#pragma once

#include <filesystem>
#include <vector>

namespace NWorkbench {

/// The configurations that were open last, the newest first; kept for the user across runs.
class RecentFiles {
 public:
  RecentFiles();

  const std::vector<std::filesystem::path>& Files() const { return mFiles; }
  void Add(const std::filesystem::path& file);
  void Remove(const std::filesystem::path& file);

 private:
  void Write() const;

  std::filesystem::path mStore;  // empty: the user has no folder for such things
  std::vector<std::filesystem::path> mFiles;
};

}  // namespace NWorkbench
