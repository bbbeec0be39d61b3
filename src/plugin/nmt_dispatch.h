#pragma once
// The networks that NMT commands reach.

#include <string>
#include <vector>

#include "com/com_ptr.h"
#include "ig/generator_node.h"
#include "plugin/commands.h"

namespace NPlugin {

/// A network, or where the host has no networks a CAN channel, that a generator block serves.
struct ZCONetworkEntry {
  std::wstring name;
  NCom::ComPtr<NIg::ZCANopenIGNode> block;
  std::uint32_t channel = 0;
};

/// The nodes of all entries, as the databases describe them, with their captions: "Drive (ID 5)", or
/// hexadecimal as the host shows numbers; with more than one entry "CAN 1::Drive (ID 5)".
std::vector<CommandSet::Node> MenuNodes(const std::vector<ZCONetworkEntry>& entries);

/// Those that a block can send on now, in the host's order.
std::vector<ZCONetworkEntry> NetworkEntries();

/// Sends an NMT command to a target in an entry, numbered from 1: to one node, to all, or to those that the
/// user chooses. The user is told where the host has the network but nothing sends on it; other numbers are
/// passed over.
void DispatchNmt(NmtKind kind, std::uint8_t network, std::uint8_t target);

}  // namespace NPlugin
