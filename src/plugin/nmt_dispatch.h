#pragma once
// The networks that NMT commands reach.

#include <string>
#include <vector>

#include "com/com_ptr.h"
#include "ig/generator_node.h"
#include "plugin/actions.h"

namespace NPlugin {

/// A network, or where the host has no networks a CAN channel, that a generator block serves.
struct ZCONetworkEntry {
  std::wstring name;
  NCom::ComPtr<NIg::ZCANopenIGNode> block;
  std::uint32_t channel = 0;
};

/// Those that a block can send on now, in the host's order.
std::vector<ZCONetworkEntry> NetworkEntries();

/// Sends an NMT command to a target in an entry, numbered from 1: to one node, to all, or to those that the
/// user chooses. The user is told where the host has the network but nothing sends on it; other numbers are
/// passed over.
void DispatchNmt(NmtKind kind, std::uint8_t network, std::uint8_t target);

}  // namespace NPlugin
