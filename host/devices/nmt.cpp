#include "host/devices/nmt.h"

namespace NDevices {

std::optional<NmtCommand> NmtCommandFor(const NSdk::CanFrame& frame, std::uint8_t nodeId) {
  if (!Matches(frame, 0) || IsRemote(frame) || LengthOf(frame) != 2) return std::nullopt;
  if (frame.data[1] != 0 && frame.data[1] != nodeId) return std::nullopt;
  switch (const NmtCommand command{frame.data[0]}) {
    case NmtCommand::Start:
    case NmtCommand::Stop:
    case NmtCommand::EnterPreOperational:
    case NmtCommand::ResetNode:
    case NmtCommand::ResetCommunication:
      return command;
  }
  return std::nullopt;
}

NmtState StateAfter(NmtCommand command) {
  if (command == NmtCommand::Start) return NmtState::Operational;
  return command == NmtCommand::Stop ? NmtState::Stopped : NmtState::PreOperational;
}

}  // namespace NDevices
