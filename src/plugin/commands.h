#pragma once

#include <vector>

#include "com/com_ptr.h"
#include "plugin/actions.h"

namespace NPlugin {

/// All commands of the plug-in, from the registry of the host that they are put into to their end.
class CommandSet {
 public:
  static constexpr std::uint8_t kNetworks = 4;
  static constexpr std::uint8_t kNodeSlots = 10;

  explicit CommandSet(ZPlugIn& owner);

  /// Puts the commands into the registry and, where it has groups, into the group "CANopen".
  void Register(NSdk::ICommandRegistry& registry);
  void Withdraw(NSdk::ICommandRegistry& registry);

  /// Commands of networks that nothing can send on are not offered.
  void ShowNetworks(std::size_t usable);
  void ShowNetworkManagement(bool shown);

  /// A node that single-node commands can be for.
  struct Node {
    std::uint8_t network = kNoNetwork;  ///< from 1
    std::uint8_t nodeId = 0;
    std::wstring caption;
  };
  /// Gives the slots of every kind their nodes, in order; what is left over has none. Further nodes are
  /// reached by the commands for chosen nodes.
  void ShowNodes(const std::vector<Node>& nodes);

 private:
  using Action = NCom::ComPtr<ActionBase>;

  using Actions = std::vector<Action>;

  void AddNetwork(ZPlugIn& owner, std::uint8_t network);
  void AddNodeSlot(ZPlugIn& owner, std::uint8_t slot);
  void FillGroup(NSdk::ICommandGroup& group) const;

  Action mBrackwell;
  Action mQuillon;
  Action mInsertScanner;
  Action mInsertGenerator;
  Action mNetworkManagement;
  std::vector<Actions> mNetworks;   // for each: all nodes, then chosen ones, kind by kind
  std::vector<Actions> mNodeKinds;  // for each kind: one for every slot
  Actions mAll;                     // in the order of their registration
};

}  // namespace NPlugin
