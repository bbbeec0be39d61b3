#include "host/workbench/used_files.h"

#include <set>

#include "host/runtime/text.h"
#include "sdk/work_file.h"

namespace NWorkbench {

std::vector<UsedFile> UsedFiles(const Workbench& workbench) {
  std::vector<UsedFile> files;
  if (!workbench.File().empty())
    files.push_back({FileRole::Configuration, workbench.File(), nullptr, workbench.FileTurn()});
  for (const PlacedBlock& block : workbench.Blocks()) {
    const auto work = NRuntime::Query<NSdk::IWorkFile>(block.object);
    NRuntime::ReceivedText path;
    std::uint32_t turn = 0;
    if (work && work->GetFile(path.Out(), &turn) == S_OK)
      files.push_back(
          {FileRole::BlockWork, NRuntime::ToPath(NRuntime::ToUtf8(path.Text())), block.object.Get(), turn});
  }
  const NConfiguration::Document document = workbench.ForUse();
  for (const auto& channel : document.channels) {
    for (const auto& database : channel.databases)
      files.push_back({FileRole::Database, database, nullptr, 0});
  }
  for (const auto& description : workbench.NodeDescriptions())
    files.push_back({FileRole::Description, description, nullptr, 0});
  for (const auto& device : document.devices) {
    const std::string& description = device.device.description;
    if (!description.empty())
      files.push_back({FileRole::Description, NRuntime::ToPath(description), nullptr, 0});
  }
  return files;
}

void UsedFileWatch::Follow(const std::vector<UsedFile>& files) {
  std::set<Key> used;
  for (const UsedFile& file : files) {
    const Key key = {file.role, file.file, file.block};
    used.insert(key);
    const auto known = mEntries.find(key);
    if (known == mEntries.end()) {
      mEntries.emplace(key, Entry{file, NRuntime::WatchedFile(file.file)});
      continue;
    }
    Entry& entry = known->second;
    if (entry.used.turn == file.turn) continue;
    entry.used = file;
    entry.watched.Accept();
    entry.isChanged = false;
  }
  std::erase_if(mEntries, [&](const auto& entry) { return !used.contains(entry.first); });
}

std::vector<UsedFileWatch::Change> UsedFileWatch::Look(Moment now) {
  std::vector<Change> changes;
  for (auto& [key, entry] : mEntries) {
    const auto change = entry.watched.Look(now);
    if (change == NRuntime::WatchedFile::Change::None) continue;
    entry.isChanged = change == NRuntime::WatchedFile::Change::Changed;
    changes.push_back({entry.used, !entry.isChanged});
  }
  return changes;
}

std::optional<UsedFile> UsedFileWatch::TakeChanged() {
  for (auto& [key, entry] : mEntries) {
    if (std::exchange(entry.isChanged, false)) return entry.used;
  }
  return std::nullopt;
}

}  // namespace NWorkbench
