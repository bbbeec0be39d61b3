#pragma once
// The attribute record of each item kind: plain values with the defaults of a new item. Their keys in the
// sequence file, encodings and bounds stand in the tables of item_kinds.cpp.

#include <array>
#include <cstdint>
#include <string>

#include "canopen/vocabulary.h"

namespace NCanopen {

struct PdoRecord {
  std::uint32_t cobId = TpdoCobId(1, 1);
  std::string data;  // typed-data text; bytes in hexadecimal when it has no prefix
  std::uint32_t nodeId = 1;
  std::uint32_t reserved = 0;
  std::uint32_t cycle_ms = 50;
  std::uint32_t delay_ms = 0;
  std::uint32_t dlc = 0;
  std::uint32_t autoSize = 0;  // 1 = dlc follows the data
};

struct SdoRecord {
  std::uint32_t cobIdTx = SdoRequestCobId(1);   // client to server
  std::uint32_t cobIdRx = SdoResponseCobId(1);  // server to client
  std::string data;                             // what a download carries, typed-data text
  std::uint32_t nodeId = 1;
  std::uint32_t cycle_ms = 4000;
  std::uint32_t delay_ms = 0;
  std::uint32_t index = 0x1000;
  std::uint32_t subIndex = 0;
  std::uint32_t blockTransfer = 0;
  std::uint32_t upload = 0;  // 1 = upload, 0 = download
  std::uint32_t objectSize = 0;
  std::uint32_t autoSize = 0;   // 1 = objectSize follows the data
  std::uint32_t autoCanId = 1;  // 1 = the COB-IDs follow the node-ID
};

/// Stores the node-ID; with automatic identifiers the COB-IDs follow, except for node-ID 0.
void SetNodeId(SdoRecord& record, std::uint32_t nodeId);

struct NmtRecord {
  std::uint8_t command = static_cast<std::uint8_t>(NmtCommand::Start);
  std::uint8_t nodeId = 1;  // 0 = all nodes
  std::uint32_t cycle_ms = 1000;
  std::uint32_t delay_ms = 0;
};

struct SyncRecord {
  std::uint32_t cobId = kSyncCobId;
  std::uint32_t cycle_ms = 150;
  std::uint32_t delay_ms = 0;
};

struct EmcyRecord {
  std::uint32_t cobId = EmcyCobId(1);
  std::uint32_t nodeId = 1;
  std::uint16_t errorCode = 0;
  std::uint8_t errorRegister = 0;
  std::array<std::uint8_t, 5> manufacturer = {};
  std::uint32_t cycle_ms = 3000;
  std::uint32_t delay_ms = 0;
};

/// Heartbeat and node-guarding reply.
struct StateRecord {
  std::uint32_t cobId = ErrorControlCobId(1);
  // Bits 0..6 node state, bit 7 toggle bit; the upper byte is not ours and is left as found.
  std::uint16_t stateWord = static_cast<std::uint16_t>(NodeState::PreOperational);
  std::uint32_t nodeId = 1;
  std::uint32_t cycle_ms = 100;
  std::uint32_t delay_ms = 0;
};

constexpr std::uint8_t StateByte(const StateRecord& record) {
  return static_cast<std::uint8_t>(record.stateWord & 0xFF);
}
constexpr std::uint8_t StateOf(const StateRecord& record) { return StateByte(record) & kNodeStateMask; }
constexpr bool ToggleOf(const StateRecord& record) { return (StateByte(record) & kToggleBit) != 0; }
constexpr void SetStateByte(StateRecord& record, std::uint8_t byte) {
  record.stateWord = static_cast<std::uint16_t>((record.stateWord & 0xFF00) | byte);
}
/// Takes the low seven bits of `state`.
constexpr void SetState(StateRecord& record, std::uint8_t state) {
  SetStateByte(record,
               static_cast<std::uint8_t>((StateByte(record) & kToggleBit) | (state & kNodeStateMask)));
}
constexpr void SetToggle(StateRecord& record, bool toggle) {
  SetStateByte(record, static_cast<std::uint8_t>(StateOf(record) | (toggle ? kToggleBit : 0)));
}

struct RtrRecord {
  std::uint32_t nodeId = 1;
  std::uint32_t cobId = TpdoCobId(1, 1);
  std::uint32_t dlc = 0;
  std::uint32_t cycle_ms = 500;
  std::uint32_t delay_ms = 0;
};

struct PauseRecord {
  std::uint32_t length_ms = 1000;
};

struct CyclicStateRecord {
  std::uint32_t start = 1;  // 1 = start cyclic transmission, 0 = stop it
};

}  // namespace NCanopen
