#include "plugin/nmt_dispatch.h"

#include <algorithm>

#include "canopen/vocabulary.h"
#include "channels/channel_manager.h"
#include "com/task_text.h"
#include "common/host_application.h"
#include "common/user_messages.h"
#include "ig/live_blocks.h"
#include "nmt/node_selection.h"
#include "resources/print.h"
#include "resources/resource_ids.h"
#include "resources/text.h"

namespace NPlugin {
namespace {

// What the host calls its networks.
struct HostNetwork {
  std::wstring name;
  std::uint32_t channel = 0;
};

std::vector<HostNetwork> SimulationNetworks(NSdk::ISimulationSetup& setup) {
  std::vector<HostNetwork> networks;
  std::uint32_t count = 0;
  if (FAILED(setup.GetNetworkCount(&count))) return networks;
  for (std::uint32_t position = 0; position < count; ++position) {
    NCom::TaskText name;
    std::uint32_t channel = 0;
    if (setup.GetNetwork(position, name.Receive(), &channel) == S_OK)
      networks.push_back({name.Text(), channel});
  }
  return networks;
}

std::vector<HostNetwork> CanChannels() {
  NChannels::ZChannelManager& channels = NChannels::TheChannelManager();
  channels.Refresh();
  std::vector<HostNetwork> networks;
  const std::uint32_t count = channels.ChannelCount();
  for (std::uint32_t position = 0; position < count; ++position) {
    const std::uint32_t number = channels.At(position).number;
    networks.push_back({NResources::Print(L"CAN%d", number), number});
  }
  return networks;
}

std::vector<HostNetwork> HostNetworks(bool simulated) {
  if (!simulated) return CanChannels();
  const auto setup = NCommon::HostService<NSdk::ISimulationSetup>();
  return setup ? SimulationNetworks(*setup) : std::vector<HostNetwork>();
}

NCanopen::NmtCommand CommandOf(NmtKind kind) {
  switch (kind) {
    case NmtKind::Preoperational:
      return NCanopen::NmtCommand::EnterPreOperational;
    case NmtKind::Stop:
      return NCanopen::NmtCommand::Stop;
    case NmtKind::Reset:
      return NCanopen::NmtCommand::ResetNode;
    case NmtKind::Operational:
      break;
  }
  return NCanopen::NmtCommand::Start;
}

// The host has this network, but nothing sends on it.
void TellThatABlockIsMissing(std::uint8_t network) {
  const bool simulated = NCommon::HasSimulationSetup();
  const std::vector<HostNetwork> networks = HostNetworks(simulated);
  if (network == kNoNetwork || network > networks.size()) return;
  const HostNetwork& wanted = networks[network - 1u];
  if (NIg::FindSender(wanted.channel)) return;
  const std::uint32_t textId = simulated ? IDS_NMT_NO_BLOCK_IN_NETWORK : IDS_NMT_NO_BLOCK_ON_CHANNEL;
  NCommon::ShowUserMessage(NResources::Print(NResources::LoadText(textId), wanted.name),
                           NSdk::kMessageExclamation);
}

}  // namespace

std::vector<ZCONetworkEntry> NetworkEntries() {
  std::vector<ZCONetworkEntry> entries;
  for (const HostNetwork& network : HostNetworks(NCommon::HasSimulationSetup())) {
    if (auto block = NIg::FindSender(network.channel)) {
      entries.push_back({network.name, std::move(block), network.channel});
    }
  }
  return entries;
}

std::vector<CommandSet::Node> MenuNodes(const std::vector<ZCONetworkEntry>& entries) {
  constexpr std::uint32_t kHexadecimal = 16;
  const bool hexadecimal = NCommon::HostNumberBase() == kHexadecimal;
  const wchar_t* const format = hexadecimal ? L"%s (ID %02X)" : L"%s (ID %d)";
  std::vector<CommandSet::Node> nodes;
  for (std::size_t network = 0; network < entries.size(); ++network) {
    const std::wstring prefix = entries.size() > 1 ? entries[network].name + L"::" : std::wstring();
    for (const NSdo::DatabaseNode& node : entries[network].block->DatabaseNodes()) {
      if (!NCanopen::IsNodeId(node.nodeId)) continue;
      nodes.push_back({static_cast<std::uint8_t>(network + 1), static_cast<std::uint8_t>(node.nodeId),
                       NResources::Print(format, prefix + node.name, node.nodeId)});
    }
  }
  return nodes;
}

void DispatchNmt(NmtKind kind, std::uint8_t network, std::uint8_t target) {
  const std::vector<ZCONetworkEntry> entries = NetworkEntries();
  if (network == kNoNetwork || network > entries.size()) return TellThatABlockIsMissing(network);
  NNmt::ZNMTTransmitter transmitter;
  transmitter.Bind(entries[network - 1u].block.Get(), entries[network - 1u].name);
  const auto command = static_cast<std::uint8_t>(CommandOf(kind));
  if (target > NCanopen::kLastNodeId) {
    NNmt::AskForNodes(transmitter, command);
  } else {
    const NNmt::NmtRequest request{command, target};
    transmitter.SendCommand(&request);
  }
}

}  // namespace NPlugin
