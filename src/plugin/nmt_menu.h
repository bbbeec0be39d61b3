#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "plugin/nmt_target.h"
#include "sdk/com_base.h"

namespace NPlugin {

/// A drop-down menu of NMT commands, made anew each time for the networks and nodes that there are.
class NmtMenu {
 public:
  /// For each kind the networks that can be reached, with "All nodes", "Nodes..." and their nodes. The menu
  /// is an HMENU that the caller destroys; the items have numbers from `firstId` to at most `lastId`.
  /// S_FALSE, nothing written: no network can be reached. E_NOTIMPL: the module has no menus here.
  HRESULT MakeForNetworks(std::uint32_t firstId, std::uint32_t lastId, void** menu);
  /// For one kind and network: "All nodes", "Other nodes...".
  HRESULT MakeForNetwork(NmtKind kind, std::uint8_t network, std::uint32_t firstId, std::uint32_t lastId,
                         void** menu);
  /// What an item of the menu that was made last stands for; empty: there is no such item.
  std::optional<NmtTarget> Find(std::uint32_t id) const;

 private:
  std::uint32_t mFirstId = 0;
  std::vector<NmtTarget> mItems;  // in the order of their numbers
};

}  // namespace NPlugin
