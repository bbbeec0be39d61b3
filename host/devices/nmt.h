#pragma once
// NMT state machine of a device (CiA 301, 7.3.2).

#include <optional>

#include "host/devices/cob_id.h"

namespace NDevices {

/// With the numbers that heartbeat and guarding carry.
enum class NmtState : std::uint8_t { Initialising = 0, Stopped = 4, Operational = 5, PreOperational = 127 };

enum class NmtCommand : std::uint8_t {
  Start = 1,
  Stop = 2,
  EnterPreOperational = 128,
  ResetNode = 129,
  ResetCommunication = 130,
};

/// The command in a frame if it is for this node.
///   identifier 0
///   byte 0     command
///   byte 1     node-ID, 0 = all
std::optional<NmtCommand> NmtCommandFor(const NSdk::CanFrame& frame, std::uint8_t nodeId);

/// Where start, stop and enter pre-operational lead.
NmtState StateAfter(NmtCommand command);

// What works in which state (CiA 301, 7.3.2.2.5). NMT and error control do in all but initialising.
constexpr bool AllowsSdo(NmtState state) {
  return state == NmtState::PreOperational || state == NmtState::Operational;
}
constexpr bool AllowsEmergency(NmtState state) { return AllowsSdo(state); }
constexpr bool AllowsPdo(NmtState state) { return state == NmtState::Operational; }

/// Identifier of boot-up, heartbeat and guarding.
constexpr std::uint32_t ErrorControlIdentifier(std::uint8_t nodeId) { return 0x700u + nodeId; }

}  // namespace NDevices
