#pragma once
// The choice of nodes that an NMT command goes to.

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "nmt/transmitter.h"

namespace NNmt {

/// One line of the choice for every node of a network: those of the database in its order, then the others.
std::vector<DatabaseNode> SelectionRows(std::span<const DatabaseNode> databaseNodes);

/// Sends a command to one node after the other, 10 ms apart. Nobody is told of a node that is not there.
void SendToNodes(ZNMTTransmitter& transmitter, std::uint8_t command, std::span<const std::uint8_t> nodeIds);

/// Lets the host ask its user for nodes and sends the command to them. False: the host does not talk to the
/// user itself.
bool AskHostForNodes(ZNMTTransmitter& transmitter, std::uint8_t command);

}  // namespace NNmt
