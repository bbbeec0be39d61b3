#include "canopen/vocabulary.h"

#include "resources/print.h"
#include "resources/resource_ids.h"

namespace NCanopen {

namespace {

constexpr CodeLabel kNmtCommands[] = {
    {1, "Start remote node"}, {2, "Stop remote node"},      {128, "Enter pre-operational"},
    {129, "Reset node"},      {130, "Reset communication"},
};

constexpr NodeStateLabel kNodeStates[] = {
    {NodeState::BootUp, "Boot-up", IDS_SCAN_STATE_BOOT_UP},
    {NodeState::Stopped, "Stopped", IDS_SCAN_STATE_STOPPED},
    {NodeState::Operational, "Operational", IDS_SCAN_STATE_OPERATIONAL},
    {NodeState::PreOperational, "Pre-operational", IDS_SCAN_STATE_PREOPERATIONAL},
};

// The labels are what users of this module know and search for, including their two slips.
constexpr CodeLabel kEmcyClasses[] = {
    {0x0000, "Error reset or no error [0000-00FF]"},
    {0x1000, "Generic error [1000-10FF]"},
    {0x2000, "Current error [2000-20FF]"},
    {0x2100, "Current errror, device input side [2100-21FF]"},
    {0x2200, "Current inside the device [2200-22FF]"},
    {0x2300, "Current error, device output side [2300-23FF]"},
    {0x3000, "Voltage error [3000-30FF]"},
    {0x3100, "Mains voltage error [3100-31FF]"},
    {0x3200, "Voltage inside the device [3200-32FF]"},
    {0x3300, "Output voltage error[3300-33FF]"},
    {0x4000, "Temperature error [4000-40FF]"},
    {0x4100, "Ambient temperature [4100-41FF]"},
    {0x4200, "Device temperature [4200-42FF]"},
    {0x5000, "Device hardware [5000-50FF]"},
    {0x6000, "Device software [6000-60FF]"},
    {0x6100, "Internal software error [6100-61FF]"},
    {0x6200, "User software error [6200-62FF]"},
    {0x6300, "Data set error [6300-63FF]"},
    {0x7000, "Additional modules error [7000-70FF]"},
    {0x8000, "Monitoring error [8000-80FF]"},
    {0x8100, "Communication error [8100-81FF]"},
    {0x8110, "CAN overrun (objects lost)"},
    {0x8120, "CAN in error passive mode"},
    {0x8130, "Life guard error or heartbeat error"},
    {0x8140, "Recovered from bus off state"},
    {0x8150, "Transmit COB-ID collision"},
    {0x8200, "Protocol error [8200-82FF]"},
    {0x8210, "PDO not processed due to length error"},
    {0x8220, "PDO length exceeded"},
    {0x9000, "External error [9000-90FF]"},
    {0xF000, "Additional functions error [F000-F0FF]"},
    {0xFF00, "Device specific error [FF00-FFFF]"},
};

constexpr std::uint32_t kDefaultPdoCount = 4;

}  // namespace

std::string CobIdText(std::uint32_t cobId) {
  return NResources::Print(IsExtended(cobId) ? "%Xx" : "%X", IdentifierOf(cobId));
}

std::span<const CodeLabel> NmtCommands() { return kNmtCommands; }

std::span<const NodeStateLabel> NodeStates() { return kNodeStates; }

std::span<const CodeLabel> EmcyClasses() { return kEmcyClasses; }

std::vector<CobIdChoice> PdoChoices(std::uint32_t nodeId) {
  std::vector<CobIdChoice> choices;
  if (!IsNodeId(nodeId)) return choices;
  for (std::uint32_t position = 0; position < kDefaultPdoCount; ++position) {
    const std::uint32_t cobId = TpdoCobId(nodeId, position + 1);
    choices.push_back({cobId, NResources::Print("%X (Node %d TPDO %d)", cobId, nodeId, position)});
  }
  return choices;
}

std::string DatabasePdoLabel(std::uint32_t cobId, std::uint32_t nodeId, std::uint32_t number) {
  return NResources::Print("%s (N%d_TPDO%d)", CobIdText(FrameCobId(cobId)), nodeId, number);
}

std::string EmcyLabel(std::uint32_t nodeId) {
  return NResources::Print("%X (EMCY_%03lu)", EmcyCobId(nodeId), nodeId);
}

std::string ErrorControlLabel(std::uint32_t nodeId) {
  return NResources::Print("%X (HBGuard_%03lu)", ErrorControlCobId(nodeId), nodeId);
}

std::string DefaultSdoLabel(std::uint32_t nodeId) {
  return NResources::Print("%X (Default)", SdoRequestCobId(nodeId));
}

std::string SdoServerLabel(std::uint32_t cobId, std::uint32_t server) {
  return NResources::Print("%s (Server %X)", CobIdText(FrameCobId(cobId)), server);
}

std::string NodeLabel(std::uint32_t nodeId, std::string_view name) {
  return NResources::Print("%lu (%s)", nodeId, name);
}

}  // namespace NCanopen
