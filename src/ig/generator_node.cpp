#include "ig/generator_node.h"

#include <algorithm>

#include "channels/channel_manager.h"
#include "com/entry.h"
#include "com/task_text.h"
#include "common/host_application.h"
#include "common/text.h"
#include "common/user_messages.h"
#include "ig/live_blocks.h"
#include "ig/sequence_file.h"
#include "resources/resource_ids.h"
#include "resources/text.h"
#include "sdk/class_ids.h"

namespace NIg {
namespace {

/// False: a field cannot be read.
bool ReadFrame(NSdk::ICANMessage& message, NSdk::CanFrame& frame) {
  std::uint32_t size = 0;
  std::uint32_t remote = 0;
  std::uint32_t extended = 0;
  if (FAILED(message.GetIdentifier(&frame.identifier)) || FAILED(message.GetDataLength(&size)) ||
      FAILED(message.GetRemote(&remote)) || FAILED(message.GetExtended(&extended))) {
    return false;
  }
  size = std::min<std::uint32_t>(size, sizeof(frame.data));
  frame.flags = size | (remote ? NSdk::kFrameRemote : 0) | (extended ? NSdk::kFrameExtended : 0);
  return remote || SUCCEEDED(message.CopyData(0, frame.data, size));
}

// Empty: there is no configuration, or it was never saved.
std::filesystem::path ConfigurationFile() {
  NCom::TaskText path;
  const auto configuration = NCommon::HostService<NSdk::IConfigurationService>();
  if (!configuration || configuration->GetPath(path.Receive()) != S_OK) return {};
  return NCommon::WideToPath(path.Text());
}

}  // namespace

ZCANopenIGNode::ZCANopenIGNode() : mGenerator(*this, *this) {
  mSettings.name = NResources::LoadText(IDS_IG_BLOCK_NAME);
  BlockCreated(*this);
}

// A host that drops the block in the middle of a transfer hears of its end as long as the block is whole.
ZCANopenIGNode::~ZCANopenIGNode() {
  mGenerator.StopMeasurement();
  CloseWindow();
  BlockDestroyed(*this);
}

std::uint32_t ZCANopenIGNode::Channel() const {
  return mGenerator.IsMeasuring() ? mGenerator.Numbers().channel : mSettings.numbers.channel;
}

template <class Body>
HRESULT ZCANopenIGNode::ActivityEntry(Body&& body) {
  return NCom::Entry([&]() -> HRESULT {
    const NCom::ComPtr<ZCANopenIGNode> self(this);  // behind a message box the host may let go of the block
    const std::uint32_t before = mGenerator.Activity();
    const HRESULT result = body();
    // Copied: the host may replace its events while it hears of this one.
    const auto events = mEvents;
    const std::uint32_t after = mGenerator.Activity();
    if (after != before) OnActivityChanged(before, after);
    if (events && after != before) events->OnActivityChanged(after);
    return result;
  });
}

const std::vector<NSdo::DatabaseNode>& ZCANopenIGNode::DatabaseNodes() {
  const std::uint32_t revision = NChannels::TheChannelManager().Revision();
  if (revision == mNodesRevision && Channel() == mNodesChannel) return mDatabaseNodes;
  mNodesRevision = revision;
  mNodesChannel = Channel();
  mDatabaseNodes.clear();
  NSdo::BuildDatabaseNodeList(mNodesChannel, mDatabaseNodes);
  return mDatabaseNodes;
}

HRESULT ZCANopenIGNode::QueryInterface(REFIID iid, void** object) {
  if (!object || iid != NSdk::IidOf<NSdk::IUIEventsEx>() || NCommon::HasWindows()) {
    return GeneratorInterfaces::QueryInterface(iid, object);
  }
  *object = nullptr;
  return E_NOINTERFACE;
}

// ---- the block in the host

HRESULT ZCANopenIGNode::Attach(NSdk::IBlockSite* site) {
  return NCom::Entry([&]() -> HRESULT {
    if (!site) return E_POINTER;
    mSite = site;
    return S_OK;
  });
}

HRESULT ZCANopenIGNode::Detach() {
  return NCom::Entry([&] {
    mGenerator.StopMeasurement();
    CloseWindow();
    mEvents.Reset();
    mSite.Reset();
  });
}

HRESULT ZCANopenIGNode::GetName(wchar_t** name) {
  return NCom::Entry([&] { return NCom::HandOut(mSettings.name, name); });
}

HRESULT ZCANopenIGNode::SetName(const wchar_t* name) {
  return NCom::Entry([&]() -> HRESULT {
    if (!name) return E_POINTER;
    mSettings.name = name;
    return S_OK;
  });
}

HRESULT ZCANopenIGNode::GetCaption(wchar_t** caption) {
  return NCom::Entry([&] { return NCom::HandOut(Caption(), caption); });
}

HRESULT ZCANopenIGNode::GetEvents(std::uint32_t* events) {
  NCom::ModuleScope scope;
  if (!events) return E_POINTER;
  *events = NSdk::kBlockTakesCan;
  return S_OK;
}

HRESULT ZCANopenIGNode::Passes(std::uint32_t) {
  NCom::ModuleScope scope;
  return S_OK;
}

// ---- measurement

HRESULT ZCANopenIGNode::StartMeasurement(NSdk::IRuntime* runtime) {
  return ActivityEntry([&]() -> HRESULT {
    if (!runtime) return E_POINTER;
    mGenerator.Numbers() = mSettings.numbers;
    UpdateDataFolder();
    return mGenerator.StartMeasurement(*runtime);
  });
}

HRESULT ZCANopenIGNode::StopMeasurement() {
  return ActivityEntry([&]() -> HRESULT {
    mGenerator.StopMeasurement();
    return S_OK;
  });
}

// Frames of other channels are not for this block: every network may have an SDO server of the same
// identifiers.
HRESULT ZCANopenIGNode::OnCanMessage(NSdk::ICANMessage* message) {
  return NCom::Entry([&]() -> HRESULT {
    if (!message) return E_POINTER;
    NSdk::CanFrame frame;
    std::uint32_t channel = 0;
    if (FAILED(message->GetChannel(&channel)) || !ReadFrame(*message, frame)) return E_FAIL;
    if (channel == mGenerator.Numbers().channel) mGenerator.OnFrame(frame);
    return S_OK;
  });
}

HRESULT ZCANopenIGNode::OnTimer(NSdk::ITimer* timer) {
  return ActivityEntry([&]() -> HRESULT {
    if (mSite) mGenerator.OnTimer(timer);
    return S_OK;
  });
}

// Relative "file:" data belongs to the configuration; without one, to the sequence file that names it.
void ZCANopenIGNode::UpdateDataFolder() {
  const std::filesystem::path configuration = ConfigurationFile();
  const std::filesystem::path& file = configuration.empty() ? mSequencePath : configuration;
  mGenerator.SetDataFolder(file.parent_path());
}

// ---- settings

HRESULT ZCANopenIGNode::GetProgId(wchar_t** progId) {
  return NCom::Entry([&] { return NCom::HandOut(NCommon::ToWide(NSdk::kProgIdCANopenIG), progId); });
}

HRESULT ZCANopenIGNode::Load(NSdk::IPersistReader* reader) {
  return NCom::Entry([&] {
    NCom::Require(reader, "reader");
    LoadSettings(*reader, mSettings);
  });
}

HRESULT ZCANopenIGNode::Save(NSdk::IPersistWriter* writer) {
  return NCom::Entry([&] {
    NCom::Require(writer, "writer");
    mSettings.sequence.ConfigurationMoved(ConfigurationFile());
    return SaveSettings(*writer, mSettings);
  });
}

// ---- the block driven by its host

/// Replaces both lists, or leaves them as they are.
bool ZCANopenIGNode::ReadLists(const std::filesystem::path& path, std::string& fault) {
  NCanopen::ItemList sequence;
  NCanopen::ItemList cyclic;
  if (!LoadSequenceFile(path, sequence, cyclic, &mHexDisplay, &fault)) return false;
  mGenerator.List(NSdk::kSequenceList) = std::move(sequence);
  mGenerator.List(NSdk::kCyclicList) = std::move(cyclic);
  mEditing.Forget();
  for (const auto list : {NSdk::kSequenceList, NSdk::kCyclicList}) mResults.Clear(list);
  if (mView) mView->ListsReplaced();
  return true;
}

HRESULT ZCANopenIGNode::LoadSequence(const wchar_t* path, wchar_t** reason) {
  return NCom::Entry([&]() -> HRESULT {
    if (!path) return E_POINTER;
    if (mGenerator.Activity() != 0) return E_FAIL;
    const std::filesystem::path file = NCommon::WideToPath(path);
    std::string fault;
    if (!ReadLists(file, fault)) {
      if (reason) NCom::HandOut(NCommon::ToWide(fault), reason);
      return E_FAIL;
    }
    RememberSequence(file);
    return S_OK;
  });
}

HRESULT ZCANopenIGNode::SaveSequence(const wchar_t* path, wchar_t** reason) {
  return NCom::Entry([&]() -> HRESULT {
    if (!path) return E_POINTER;
    const std::filesystem::path file = NCommon::WideToPath(path);
    std::string fault;
    bool written = false;
    SaveSequenceFile(file, mGenerator.List(NSdk::kSequenceList), mGenerator.List(NSdk::kCyclicList), &fault,
                     &written);
    if (!fault.empty() && reason) NCom::HandOut(NCommon::ToWide(fault), reason);
    if (!written) return E_FAIL;
    mEditing.MarkSaved();
    RememberSequence(file);
    return fault.empty() ? S_OK : S_FALSE;
  });
}

void ZCANopenIGNode::RememberSequence(const std::filesystem::path& path) {
  mSequencePath = path;
  ++mSequenceTurn;
  mSettings.sequence.Remember(path, ConfigurationFile());
  UpdateDataFolder();
  mShowsOutput = false;
  ShowCaption();
}

HRESULT ZCANopenIGNode::ReloadSequence() {
  return NCom::Entry([&]() -> HRESULT {
    if (!NCommon::HostService<NSdk::IConfigurationService>()) return S_FALSE;
    const std::filesystem::path path = mSettings.sequence.Resolve(ConfigurationFile());
    if (path.empty()) return S_FALSE;
    const std::wstring text = NCommon::PathToWide(path);
    if (SUCCEEDED(LoadSequence(text.c_str(), nullptr))) return S_OK;
    TellThatLoadingFailed(text);
    return E_FAIL;
  });
}

// ---- the file that other programs may change

HRESULT ZCANopenIGNode::GetFile(wchar_t** path, std::uint32_t* turn) {
  return NCom::Entry([&]() -> HRESULT {
    if (!path || !turn) return E_POINTER;
    if (mSequencePath.empty()) return S_FALSE;
    NCom::HandOut(NCommon::PathToWide(mSequencePath), path);
    *turn = mSequenceTurn;
    return S_OK;
  });
}

HRESULT ZCANopenIGNode::ReadAgain(wchar_t** reason) {
  return LoadSequence(NCommon::PathToWide(mSequencePath).c_str(), reason);
}

// ---- unsaved work, put aside

HRESULT ZCANopenIGNode::GetUnsavedState(std::uint32_t* state) {
  NCom::ModuleScope scope;
  if (!state) return E_POINTER;
  // 0 has a meaning of its own, and versions begin with it.
  *state = mEditing.IsModified() ? static_cast<std::uint32_t>(mEditing.Version()) + 1 : 0;
  return S_OK;
}

HRESULT ZCANopenIGNode::WriteCopy(const wchar_t* path) {
  return NCom::Entry([&]() -> HRESULT {
    if (!path) return E_POINTER;
    if (!mEditing.IsModified()) return S_FALSE;
    bool written = false;
    SaveSequenceFile(NCommon::WideToPath(path), mGenerator.List(NSdk::kSequenceList),
                     mGenerator.List(NSdk::kCyclicList), nullptr, &written);
    return written ? S_OK : E_FAIL;
  });
}

// The lists belong to the file that the settings remember, which is not read: it is older.
HRESULT ZCANopenIGNode::TakeCopy(const wchar_t* path) {
  return NCom::Entry([&]() -> HRESULT {
    if (!path) return E_POINTER;
    std::string fault;
    if (mGenerator.Activity() != 0 || !ReadLists(NCommon::WideToPath(path), fault)) return E_FAIL;
    mEditing.MarkUnsaved();
    mReloaded = true;
    mSequencePath = mSettings.sequence.Resolve(ConfigurationFile());
    UpdateDataFolder();
    ShowCaption();
    return S_OK;
  });
}

HRESULT ZCANopenIGNode::ToggleSequence() {
  return ActivityEntry([&]() -> HRESULT {
    if (!mGenerator.IsMeasuring()) return E_FAIL;
    mGenerator.ToggleSequence();
    return S_OK;
  });
}

HRESULT ZCANopenIGNode::ToggleCyclic() {
  return ActivityEntry([&]() -> HRESULT {
    if (!mGenerator.IsMeasuring()) return E_FAIL;
    mGenerator.ToggleCyclic();
    return S_OK;
  });
}

HRESULT ZCANopenIGNode::GetActivity(std::uint32_t* activity) {
  NCom::ModuleScope scope;
  if (!activity) return E_POINTER;
  *activity = mGenerator.Activity();
  return S_OK;
}

HRESULT ZCANopenIGNode::GetItemCount(std::uint32_t list, std::uint32_t* count) {
  NCom::ModuleScope scope;
  if (!count) return E_POINTER;
  if (list > NSdk::kCyclicList) return E_INVALIDARG;
  *count = static_cast<std::uint32_t>(mGenerator.List(static_cast<NSdk::GeneratorList>(list)).size());
  return S_OK;
}

NCanopen::ZMsgItemInfo* ZCANopenIGNode::FindItem(std::uint32_t list, std::uint32_t position) {
  if (list > NSdk::kCyclicList) return nullptr;
  const NCanopen::ItemList& items = mGenerator.List(static_cast<NSdk::GeneratorList>(list));
  return position < items.size() ? items[position].get() : nullptr;
}

HRESULT ZCANopenIGNode::GetItem(std::uint32_t list, std::uint32_t position, NSdk::GeneratorItem* item) {
  return NCom::Entry([&]() -> HRESULT {
    if (!item) return E_POINTER;
    const NCanopen::ZMsgItemInfo* found = FindItem(list, position);
    if (!found) return E_INVALIDARG;
    NCom::TaskText texts[4];
    NCom::HandOut(NCommon::ToWide(found->GetTypeName()), texts[0].Receive());
    NCom::HandOut(NCommon::ToWide(found->GetAttributesText()), texts[1].Receive());
    NCom::HandOut(NCommon::ToWide(found->GetCycleText()), texts[2].Receive());
    NCom::HandOut(NCommon::ToWide(found->GetDelayText()), texts[3].Receive());
    *item = {found->GetTypeCode(), found->GetEnabled(), texts[0].Detach(),
             texts[1].Detach(),    texts[2].Detach(),   texts[3].Detach()};
    return S_OK;
  });
}

HRESULT ZCANopenIGNode::SetItemEnabled(std::uint32_t list, std::uint32_t position, std::uint32_t enabled) {
  NCom::ModuleScope scope;
  NCanopen::ZMsgItemInfo* item = FindItem(list, position);
  if (!item) return E_INVALIDARG;
  item->SetEnabled(enabled ? 1 : 0);
  if (mView) mView->ItemChanged({static_cast<NSdk::GeneratorList>(list), position});
  return S_OK;
}

HRESULT ZCANopenIGNode::SetEvents(NSdk::IGeneratorEvents* events) {
  return NCom::Entry([&] { mEvents = events; });
}

}  // namespace NIg
