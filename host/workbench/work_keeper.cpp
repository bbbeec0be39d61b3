#include "host/workbench/work_keeper.h"

#include "host/runtime/text.h"
#include "sdk/unsaved_work.h"

namespace NWorkbench {

// By position, with the states of their work.
WorkKeeper::States WorkKeeper::UnsavedBlocks() const {
  States states;
  const auto& blocks = mWorkbench.Blocks();
  for (std::size_t position = 0; position < blocks.size(); ++position) {
    if (const std::uint32_t state = UnsavedStateOf(blocks[position])) states.emplace_back(position, state);
  }
  return states;
}

void WorkKeeper::Update(const NConfiguration::Document& windows, std::int64_t time) {
  States blocks = UnsavedBlocks();
  const bool isModified = mWorkbench.IsModified();
  if (!isModified && blocks.empty()) return Discard();
  UnsavedWork work = {mWorkbench.File(), isModified, windows, {}};
  for (const auto& [position, state] : blocks) work.blocks[position];
  if (mIsKept && work == mKept && blocks == mKeptBlocks) return;
  mFolder.Keep(work, time, [&](std::size_t position, const std::filesystem::path& file) {
    const auto copied = NRuntime::Query<NSdk::IWorkCopy>(mWorkbench.Blocks()[position].object);
    return copied && copied->WriteCopy(NRuntime::WidePathText(file).c_str()) == S_OK;
  });
  mIsKept = true;
  mKept = std::move(work);
  mKeptBlocks = std::move(blocks);
}

void WorkKeeper::Discard() {
  if (mIsKept) mFolder.Discard();
  mIsKept = false;
}

std::vector<std::wstring> WorkKeeper::TakeUp(Workbench& workbench, const UnsavedWork& work) {
  workbench.TakeUp(work.document, work.file, work.isModified);
  std::vector<std::wstring> refused;
  for (const auto& [position, file] : work.blocks) {
    if (position >= workbench.Blocks().size()) continue;
    const PlacedBlock& block = workbench.Blocks()[position];
    const auto copied = NRuntime::Query<NSdk::IWorkCopy>(block.object);
    if (!copied || copied->TakeCopy(NRuntime::WidePathText(file).c_str()) != S_OK)
      refused.push_back(workbench.NameOf(block));
  }
  return refused;
}

}  // namespace NWorkbench
