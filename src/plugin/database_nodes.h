#pragma once
// The database node list and the channels as the host reads them.

#include <vector>

#include "channels/channel_manager.h"
#include "com/com_ptr.h"
#include "sdk/database_nodes.h"
#include "sdo/node_list.h"

namespace NPlugin {

/// A NSdk::ChannelProtocol set.
std::uint32_t ProtocolsOf(const NChannels::Channel& channel);

/// Each node as an NSdk::IDatabaseNode.
NCom::ComPtr<NSdk::IArray> MakeNodeArray(std::vector<NSdo::DatabaseNode> nodes);

}  // namespace NPlugin
