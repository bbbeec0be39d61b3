#include "scanner/model.h"

#include "com/entry.h"
#include "common/hash_map.h"

namespace NScanner {
namespace {

constexpr std::uint32_t kNodesPerChannel = 128;

// Each of the 32 channels that a host numbers has its own stretch, where every key finds its place at once.
// Other channel numbers share these places until the table is full.
constexpr std::int32_t kTableSize = 32 * kNodesPerChannel;

std::uint32_t KeyOf(std::uint32_t nodeId, std::uint32_t channel) {
  return (channel - 1) * kNodesPerChannel + (nodeId & (kNodesPerChannel - 1));
}

// The table holds nothing else.
ZCANopenNode* ToNode(NSdk::ICANopenNode* node) { return static_cast<ZCANopenNode*>(node); }

}  // namespace

ZCANopenModel::ZCANopenModel() : mNodes(NCommon::MakeHashMap()) {
  if (FAILED(mNodes->Resize(kTableSize))) throw std::bad_alloc();
}

template <class Action>
void ZCANopenModel::ForEachNode(Action action) const {
  const auto nodes = GetNodes();
  std::uint32_t count = 0;
  nodes->GetCount(&count);
  for (std::uint32_t position = 0; position < count; ++position) {
    NCom::ComPtr<NSdk::ICANopenNode> node;
    nodes->GetElement(position, NSdk::IidOf<NSdk::ICANopenNode>(), node.ReceiveVoid());
    action(*ToNode(node.Get()));
  }
}

// ---- changes

HRESULT ZCANopenModel::GetChangeCount(std::uint32_t* count) {
  NCom::ModuleScope scope;
  if (!count) return E_INVALIDARG;
  *count = mChangeCount;
  return S_OK;
}

HRESULT ZCANopenModel::Changed(std::uint32_t, IUnknown* object) {
  NCom::ModuleScope scope;
  ++mChangeCount;
  if (mUpdateMark != 0) return S_OK;
  mPending = true;
  if (mPendingNode) {
    mPendingNode.Reset();
  } else {
    mPendingNode = object;
  }
  return S_OK;
}

HRESULT ZCANopenModel::BeginUpdate() {
  NCom::ModuleScope scope;
  if (mUpdateMark == 0) mUpdateMark = mChangeCount;
  return S_OK;
}

HRESULT ZCANopenModel::EndUpdate(std::uint32_t code, IUnknown* object) {
  NCom::ModuleScope scope;
  const bool changed = mUpdateMark != 0 && mUpdateMark != mChangeCount;
  mUpdateMark = 0;
  return changed ? Changed(code, object) : S_OK;
}

HRESULT ZCANopenModel::AddObserver(NSdk::IModelObserver* observer) {
  return NCom::Entry([&] { mObservers.Add(observer); });
}

HRESULT ZCANopenModel::RemoveObserver(NSdk::IModelObserver* observer) {
  return NCom::Entry([&] { mObservers.Remove(observer); });
}

bool ZCANopenModel::NotifyObservers() {
  if (!mPending) return false;
  const auto node = mPendingNode;  // an observer may report a further change, which takes the hint back
  mObservers.Notify(this, 0, node.Get());
  mPending = false;
  mPendingNode.Reset();
  return true;
}

// ---- rows

NCom::ComPtr<ZCANopenNode> ZCANopenModel::FindNode(std::uint32_t nodeId, std::uint32_t channel) const {
  NCom::Require(mNodes, "mNodes");
  NCom::ComPtr<NSdk::ICANopenNode> node;
  mNodes->Lookup(KeyOf(nodeId, channel), NSdk::IidOf<NSdk::ICANopenNode>(), node.ReceiveVoid());
  return NCom::ComPtr<ZCANopenNode>::Adopt(ToNode(node.Detach()));
}

HRESULT ZCANopenModel::AddNode(std::uint32_t nodeId, std::uint32_t channel,
                               NCom::ComPtr<ZCANopenNode>& node) {
  NCom::Require(mNodes, "mNodes");
  auto added = NCom::Make<ZCANopenNode>(*this, nodeId, channel);
  const HRESULT result = mNodes->Set(KeyOf(nodeId, channel), added->Identity());
  if (FAILED(result)) return result;
  node = std::move(added);
  return Changed(NSdk::kNodeAdded, node->Identity());
}

void ZCANopenModel::Clear() {
  NCom::Require(mNodes, "mNodes");
  mNodes->Clear();
  Changed(NSdk::kTableCleared, nullptr);
}

NCom::ComPtr<NSdk::IArray> ZCANopenModel::GetNodes() const {
  NCom::ComPtr<NSdk::IArray> nodes;
  if (FAILED(mNodes->GetValues(nodes.Receive()))) throw std::bad_alloc();
  return nodes;
}

void ZCANopenModel::MarkMasterUnknown() {
  ForEachNode([](ZCANopenNode& node) {
    const std::string& priority = node.GetPriority();
    const bool doubtful = priority.find('?') != std::string::npos;
    node.SetMasterPriority(" ", doubtful ? priority : "? " + priority);
  });
}

void ZCANopenModel::Age(std::uint32_t elapsed_ms) {
  ForEachNode([&](ZCANopenNode& node) { node.Age(elapsed_ms); });
}

}  // namespace NScanner
