#include "plugin/commands.h"

#include "plugin/plug_in.h"

namespace NPlugin {
namespace {

constexpr wchar_t kGroup[] = L"CANopen";
constexpr std::size_t kKinds = std::size(kNmtKinds);

template <class Action, class... Arguments>
NCom::ComPtr<ActionBase> MakeAction(Arguments&&... arguments) {
  return NCom::ComPtr<ActionBase>::Adopt(new Action(std::forward<Arguments>(arguments)...));
}

std::wstring Numbered(const wchar_t* base, std::uint8_t number) {
  return std::wstring(base) + L'.' + std::to_wstring(number);
}

template <class Action>
NCom::ComPtr<ActionBase> ForAll(ZPlugIn& owner, const wchar_t* base, std::uint8_t network) {
  return MakeAction<Action>(owner, Numbered(base, network), NSdk::kCommandShown, network, kTargetAllNodes);
}

template <class Action>
NCom::ComPtr<ActionBase> ForChosen(ZPlugIn& owner, const wchar_t* base, std::uint8_t network) {
  return MakeAction<Action>(owner, Numbered(base, network), NSdk::kCommandShown, network, kTargetChosenNodes);
}

template <class Action>
NCom::ComPtr<ActionBase> ForNode(ZPlugIn& owner, const wchar_t* base, std::uint8_t slot) {
  return MakeAction<Action>(owner, Numbered(base, slot), NSdk::kCommandHidden, kNoNetwork, kTargetAllNodes);
}

}  // namespace

CommandSet::CommandSet(ZPlugIn& owner)
    : mBrackwell(MakeAction<ZActionExecBrk>(owner)),
      mQuillon(MakeAction<ZActionExecQuillon>(owner)),
      mInsertScanner(MakeAction<ZActionInsertScanner>(owner)),
      mInsertGenerator(MakeAction<ZActionInsertSeqGenerator>(owner)),
      mNetworkManagement(MakeAction<ZActionCANopenNmtManagement>(owner)),
      mNodeKinds(kKinds),
      mAll{mBrackwell, mQuillon, mInsertScanner, mInsertGenerator, mNetworkManagement} {
  for (std::uint8_t network = 1; network <= kNetworks; ++network) AddNetwork(owner, network);
  for (std::uint8_t slot = 1; slot <= kNodeSlots; ++slot) AddNodeSlot(owner, slot);
}

void CommandSet::AddNetwork(ZPlugIn& owner, std::uint8_t network) {
  Actions actions = {
      ForAll<ZActionCANopenSendMsgOperationalAll>(owner, L"CANopen.Operational.All", network),
      ForChosen<ZActionCANopenSendMsgOperationalNodes>(owner, L"CANopen.Operational.Nodes", network),
      ForAll<ZActionCANopenSendMsgPreoperationalAll>(owner, L"CANopen.Preoperational.All", network),
      ForChosen<ZActionCANopenSendMsgPreoperationalNodes>(owner, L"CANopen.Preoperational.Nodes", network),
      ForAll<ZActionCANopenSendMsgStopAll>(owner, L"CANopen.Stop.All", network),
      ForChosen<ZActionCANopenSendMsgStopNodes>(owner, L"CANopen.Stop.Nodes", network),
      ForAll<ZActionCANopenSendMsgResetAll>(owner, L"CANopen.Reset.All", network),
      ForChosen<ZActionCANopenSendMsgResetNodes>(owner, L"CANopen.Reset.Nodes", network),
  };
  mAll.insert(mAll.end(), actions.begin(), actions.end());
  mNetworks.push_back(std::move(actions));
}

void CommandSet::AddNodeSlot(ZPlugIn& owner, std::uint8_t slot) {
  const Actions actions = {
      ForNode<ZActionCANopenSendMsgOperational>(owner, L"CANopen.Operational", slot),
      ForNode<ZActionCANopenSendMsgPreoperational>(owner, L"CANopen.Preoperational", slot),
      ForNode<ZActionCANopenSendMsgStop>(owner, L"CANopen.Stop", slot),
      ForNode<ZActionCANopenSendMsgReset>(owner, L"CANopen.Reset", slot),
  };
  mAll.insert(mAll.end(), actions.begin(), actions.end());
  for (std::size_t kind = 0; kind < kKinds; ++kind) mNodeKinds[kind].push_back(actions[kind]);
}

void CommandSet::Register(NSdk::ICommandRegistry& registry) {
  for (const Action& action : mAll) registry.AddCommand(action->Name().c_str(), action.Get());
  const auto groups = NCom::QueryFor<NSdk::ICommandGroups>(&registry);
  NCom::ComPtr<NSdk::ICommandGroup> group;
  if (groups && SUCCEEDED(groups->CreateGroup(kGroup, kGroup, group.Receive())) && group) FillGroup(*group);
}

void CommandSet::FillGroup(NSdk::ICommandGroup& group) const {
  const auto add = [&](const Action& action) { group.AddCommand(action->Name().c_str()); };
  add(mQuillon);
  add(mBrackwell);
  add(mNetworkManagement);
  for (const Actions& network : mNetworks) {
    for (const Action& action : network) add(action);
  }
  for (const Actions& kind : mNodeKinds) {
    for (const Action& action : kind) add(action);
  }
}

void CommandSet::Withdraw(NSdk::ICommandRegistry& registry) {
  const auto groups = NCom::QueryFor<NSdk::ICommandGroups>(&registry);
  if (groups) groups->RemoveGroup(kGroup);
  for (const Action& action : mAll) registry.RemoveCommand(action->Name().c_str());
}

void CommandSet::ShowNetworks(std::size_t usable) {
  for (std::size_t network = 0; network < mNetworks.size(); ++network) {
    const std::uint32_t state = network < usable ? NSdk::kCommandShown : NSdk::kCommandHidden;
    for (const Action& action : mNetworks[network]) action->SetState(state);
  }
}

void CommandSet::ShowNodes(const std::vector<Node>& nodes) {
  for (const Actions& kind : mNodeKinds) {
    for (std::size_t slot = 0; slot < kind.size(); ++slot) {
      const Node node = slot < nodes.size() ? nodes[slot] : Node();
      dynamic_cast<NodeSlot&>(*kind[slot]).Assign(node.network, node.nodeId, node.caption);
    }
  }
}

void CommandSet::ShowNetworkManagement(bool shown) {
  mNetworkManagement->SetState(shown ? NSdk::kCommandShown : NSdk::kCommandHidden);
}

}  // namespace NPlugin
