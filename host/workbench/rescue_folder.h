#pragma once
// Unsaved work on the disk, where the next start of the program finds it.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "host/configuration/document.h"
#include "host/workbench/file_lock.h"

namespace NWorkbench {

/// What a configuration held that was not saved.
struct UnsavedWork {
  std::filesystem::path file;  ///< that the configuration belongs into; empty: it was never saved
  bool isModified = false;     ///< it differs from that file
  NConfiguration::Document document;
  /// Copies of what blocks have in files of their own, by their positions in the document.
  std::map<std::size_t, std::filesystem::path> blocks;

  bool operator==(const UnsavedWork&) const = default;
};

/// The folder of one process below a common one. It is locked while its process, or another one that has
/// found it, holds it; the system unlocks it when that process is gone.
class RescueFolder {
 public:
  /// Writes the copy of a block. False: it could not.
  using WriteBlock = std::function<bool(std::size_t position, const std::filesystem::path& file)>;

  /// A free name below `root`; there is no folder before Keep().
  RescueFolder(std::filesystem::path root, unsigned long process);
  /// Those of processes that are gone, the newest first; each is locked.
  static std::vector<RescueFolder> FindLeft(const std::filesystem::path& root);
  /// Does the process of this name keep anything, or did it?
  static bool IsLeft(const std::filesystem::path& root, const std::string& name);
  /// What is left of one by its name. Empty: it is not there, or locked.
  static std::optional<RescueFolder> Claim(const std::filesystem::path& root, const std::string& name);

  /// The last part of its path.
  std::string Name() const { return mFolder.filename().string(); }
  /// Replaces what it keeps; `work.blocks` tells the positions alone. Throws std::runtime_error, one line:
  /// what it kept before is still there.
  void Keep(const UnsavedWork& work, std::int64_t time, const WriteBlock& write);
  /// Throws std::runtime_error, one line: it cannot be read.
  UnsavedWork Read() const;
  /// When it was kept, in seconds since 1970; 0: there is nothing.
  std::int64_t Time() const;
  /// Nothing is left of it.
  void Discard();

 private:
  struct Contents {
    unsigned long turn = 0;  // of the files that belong together
    std::int64_t time = 0;
    UnsavedWork work;
  };

  explicit RescueFolder(std::filesystem::path folder) : mFolder(std::move(folder)) {}
  std::filesystem::path FileOf(unsigned long turn, const std::string& name) const;
  std::optional<Contents> ReadContents() const;
  void WriteContents(const Contents& contents) const;
  void RemoveOthers(unsigned long turn) const;
  bool IsComplete() const;

  std::filesystem::path mFolder;
  FileLock mLock;
  unsigned long mTurn = 0;
};

}  // namespace NWorkbench
