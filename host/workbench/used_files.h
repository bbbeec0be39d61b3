#pragma once
// The files that a configuration was read from and names, and what other programs do to them.

#include <map>
#include <optional>
#include <tuple>
#include <vector>

#include "host/runtime/watched_file.h"
#include "host/workbench/workbench.h"

namespace NWorkbench {

enum class FileRole {
  Configuration,
  BlockWork,    ///< of a block: the sequence of a generator
  Database,     ///< of a channel
  Description,  ///< of a simulated device
};

struct UsedFile {
  FileRole role = FileRole::Configuration;
  std::filesystem::path file;
  const IUnknown* block = nullptr;  ///< whose work it is; never looked into
  std::uint32_t turn = 0;           ///< differs after each time at which the program has read or written it
};

/// The files of the configuration that is open, in the order of the roles; absolute.
std::vector<UsedFile> UsedFiles(const Workbench& workbench);

/// Watches files that come and go.
class UsedFileWatch {
 public:
  using Moment = NRuntime::WatchedFile::Moment;

  struct Change {
    UsedFile used;
    bool vanished = false;
  };

  /// These are the files from now on. What is new among them, or was read or written by the program since the
  /// last call, is known as it is now: what had happened to it before is forgotten.
  void Follow(const std::vector<UsedFile>& files);
  /// What is new since the last call.
  std::vector<Change> Look(Moment now);
  /// A changed file that the user has not been asked about, by the order of roles; each once.
  std::optional<UsedFile> TakeChanged();

 private:
  using Key = std::tuple<FileRole, std::filesystem::path, const IUnknown*>;
  struct Entry {
    UsedFile used;
    NRuntime::WatchedFile watched;
    bool isChanged = false;  // and nobody was asked
  };

  std::map<Key, Entry> mEntries;
};

}  // namespace NWorkbench
