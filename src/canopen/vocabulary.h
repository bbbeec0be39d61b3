#pragma once
// Numbers and labels of CANopen (CiA 301) that items, generator, scanner and editors share.

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace NCanopen {

// COB-ID, 32 bits:
//   bits 0..28  CAN identifier (a standard one uses bits 0..10)
//   bit 29      extended (29-bit) identifier
//   bit 31      the object is disabled
inline constexpr std::uint32_t kIdentifierMask = 0x1FFFFFFF;
inline constexpr std::uint32_t kStandardIdentifierMask = 0x7FF;
inline constexpr std::uint32_t kCobIdExtended = 0x20000000;
inline constexpr std::uint32_t kCobIdInvalid = 0x80000000;

constexpr std::uint32_t IdentifierOf(std::uint32_t cobId) { return cobId & kIdentifierMask; }
constexpr bool IsExtended(std::uint32_t cobId) { return (cobId & kCobIdExtended) != 0; }

/// The same of a frame that a database or a device description declares: it has no other flag than bit 29,
/// and a standard identifier no other bits than 0..10.
constexpr std::uint32_t FrameCobId(std::uint32_t declared) {
  return declared & (IsExtended(declared) ? kIdentifierMask | kCobIdExtended : kStandardIdentifierMask);
}

/// Hexadecimal without prefix, an extended identifier with a trailing "x": "181", "800x".
std::string CobIdText(std::uint32_t cobId);

inline constexpr std::uint32_t kFirstNodeId = 1;
inline constexpr std::uint32_t kLastNodeId = 127;
inline constexpr std::uint32_t kAllNodes = 0;  // as the node-ID of an NMT command

constexpr bool IsNodeId(std::uint32_t nodeId) { return nodeId >= kFirstNodeId && nodeId <= kLastNodeId; }

// Identifiers of the pre-defined connection set (CiA 301, 7.3.3). Node-ID 1..127; TPDO number 1..4.
inline constexpr std::uint32_t kNmtCobId = 0x000;
inline constexpr std::uint32_t kSyncCobId = 0x080;
constexpr std::uint32_t EmcyCobId(std::uint32_t nodeId) { return 0x080 + nodeId; }
constexpr std::uint32_t TpdoCobId(std::uint32_t nodeId, std::uint32_t number) {
  return 0x180 + 0x100 * (number - 1) + nodeId;
}
/// Client to server.
constexpr std::uint32_t SdoRequestCobId(std::uint32_t nodeId) { return 0x600 + nodeId; }
/// Server to client.
constexpr std::uint32_t SdoResponseCobId(std::uint32_t nodeId) { return 0x580 + nodeId; }
/// Heartbeat, boot-up, node-guarding reply, and the remote frame that asks for that reply.
constexpr std::uint32_t ErrorControlCobId(std::uint32_t nodeId) { return 0x700 + nodeId; }

/// A code and the label that an editor shows for it.
struct CodeLabel {
  std::uint32_t code;
  const char* label;
};

/// First data byte of an NMT command (CiA 301, 7.2.8.3.1); the second is the node-ID.
enum class NmtCommand : std::uint8_t {
  Start = 1,
  Stop = 2,
  EnterPreOperational = 128,
  ResetNode = 129,
  ResetCommunication = 130,
};
std::span<const CodeLabel> NmtCommands();

/// Bits 0..6 of the byte in a heartbeat or guarding reply (CiA 301, 7.2.8.3.2).
enum class NodeState : std::uint8_t { BootUp = 0, Stopped = 4, Operational = 5, PreOperational = 0x7F };
inline constexpr std::uint8_t kNodeStateMask = 0x7F;
inline constexpr std::uint8_t kToggleBit = 0x80;  // of a guarding reply

/// A node state is named differently in the item editors and in the scanner, whose name is in the string
/// table.
struct NodeStateLabel {
  NodeState state;
  const char* editorLabel;
  unsigned scannerStringId;
};
std::span<const NodeStateLabel> NodeStates();

/// One entry per class of emergency error codes (CiA 301, 7.2.7.1); the code is the first of its class.
std::span<const CodeLabel> EmcyClasses();

// What an editor offers in its lists. The text is cut at its first blank before it is read back.
inline constexpr const char* kAllNodesLabel = "0 (All nodes)";

struct CobIdChoice {
  std::uint32_t cobId;
  std::string label;
};
/// The four default transmit PDOs of a node, "181 (Node 1 TPDO 0)", counted from 0; nothing unless
/// IsNodeId(nodeId).
std::vector<CobIdChoice> PdoChoices(std::uint32_t nodeId);
/// A transmit PDO that a database frame describes, "181 (N1_TPDO1)", counted from 1.
std::string DatabasePdoLabel(std::uint32_t cobId, std::uint32_t nodeId, std::uint32_t number);
/// "81 (EMCY_001)"
std::string EmcyLabel(std::uint32_t nodeId);
/// "701 (HBGuard_001)"
std::string ErrorControlLabel(std::uint32_t nodeId);
/// "601 (Default)"
std::string DefaultSdoLabel(std::uint32_t nodeId);
/// A further server channel that the node's description declares: "640 (Server 2)".
std::string SdoServerLabel(std::uint32_t cobId, std::uint32_t server);
/// "5 (Drive)"
std::string NodeLabel(std::uint32_t nodeId, std::string_view name);

}  // namespace NCanopen
