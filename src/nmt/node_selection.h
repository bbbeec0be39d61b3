#pragma once
// The choice of nodes that an NMT command goes to.

#include <cstdint>
#include <span>
#include <vector>

#include "nmt/transmitter.h"

namespace NNmt {

/// One line of the choice for every node of a network: those of the database in its order, then the others.
std::vector<DatabaseNode> SelectionRows(std::span<const DatabaseNode> databaseNodes);

/// Sends a command to one node after the other, 10 ms apart. Nobody is told of a node that is not there.
void SendToNodes(ZNMTTransmitter& transmitter, std::uint8_t command, std::span<const std::uint8_t> nodeIds);

/// Lets the user choose nodes and sends the command to them: through the host where it talks to the user
/// itself (IUserDialogs), else in a dialog of the module.
void AskForNodes(ZNMTTransmitter& transmitter, std::uint8_t command);

}  // namespace NNmt
