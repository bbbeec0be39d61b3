#pragma once
// Keeps a copy of what was not saved up to date, and takes one up.

#include <filesystem>
#include <utility>
#include <vector>

#include "host/workbench/rescue_folder.h"
#include "host/workbench/workbench.h"

namespace NWorkbench {

class WorkKeeper {
 public:
  /// Copies stand in a folder below `root`, which is common to all processes.
  WorkKeeper(Workbench& workbench, std::filesystem::path root, unsigned long process)
      : mWorkbench(workbench), mFolder(std::move(root), process) {}

  std::string FolderName() const { return mFolder.Name(); }
  /// Every few seconds: copies what has changed since, removes the copy where everything is saved. `windows`
  /// is the configuration with the places of its windows; where they alone differ, nothing is kept. Throws
  /// std::runtime_error, one line, when it cannot.
  void Update(const NConfiguration::Document& windows, std::int64_t time);
  /// The program ends in order.
  void Discard();

  /// Opens what was left in place of the present configuration: unsaved as it was, and belonging to the file
  /// that it belonged to. Tells the blocks whose work could not be given back. Throws std::runtime_error, one
  /// line: it cannot be read, and the present configuration stays open.
  static std::vector<std::wstring> TakeUp(Workbench& workbench, const UnsavedWork& work);

 private:
  using States = std::vector<std::pair<std::size_t, std::uint32_t>>;
  States UnsavedBlocks() const;

  Workbench& mWorkbench;
  RescueFolder mFolder;
  bool mIsKept = false;
  UnsavedWork mKept;
  States mKeptBlocks;
};

}  // namespace NWorkbench
