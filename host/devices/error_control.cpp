#include "host/devices/error_control.h"

namespace NDevices {
namespace {

constexpr std::uint8_t kGuardToggle = 0x80;
constexpr ObjectAddress kGuardTime = {0x100C, 0};  // ms
constexpr ObjectAddress kLifeTimeFactor = {0x100D, 0};
constexpr ObjectAddress kHeartbeatTime = {0x1017, 0};  // ms

}  // namespace

Time ErrorControl::HeartbeatTime() const {
  return std::chrono::milliseconds(mObjects.Number(kHeartbeatTime));
}

Time ErrorControl::LifeTime() const {
  return std::chrono::milliseconds(std::uint64_t{mObjects.Number(kGuardTime)} *
                                   mObjects.Number(kLifeTimeFactor));
}

// Boot-up, heartbeat and answer to guarding have one form:
//   identifier 700h + node-ID
//   byte 0     t sssssss   t toggle, of guarding only; s state, 0 = boot-up
void ErrorControl::SendState(std::uint8_t content) {
  NSdk::CanFrame frame = FrameTo(ErrorControlIdentifier(mNodeId), 1);
  frame.data[0] = content;
  mBus.Send(frame);
}

void ErrorControl::BootUp(Time now) {
  SendState(static_cast<std::uint8_t>(NmtState::Initialising));
  mToggle = 0;
  mLifeEnd = kNever;
  mGuardingLost = false;
  OnHeartbeatTimeWritten(now);
}

void ErrorControl::OnHeartbeatTimeWritten(Time now) {
  const Time period = HeartbeatTime();
  mHeartbeatDue = period != Time::zero() ? now + period : kNever;
  if (period == Time::zero()) return;
  mLifeEnd = kNever;  // heartbeat takes the place of guarding
  mGuardingLost = false;
}

void ErrorControl::OnFrame(const NSdk::CanFrame& frame, NmtState state, Time now) {
  if (!IsRemote(frame) || !Matches(frame, ErrorControlIdentifier(mNodeId))) return;
  if (HeartbeatTime() != Time::zero()) return;
  SendState(static_cast<std::uint8_t>(static_cast<std::uint8_t>(state) | mToggle));
  mToggle ^= kGuardToggle;
  mGuardingLost = false;
  mLifeEnd = LifeTime() != Time::zero() ? now + LifeTime() : kNever;
}

void ErrorControl::OnDeadline(NmtState state, Time now) {
  if (mHeartbeatDue <= now) {
    SendState(static_cast<std::uint8_t>(state));
    mHeartbeatDue = NextEnd(mHeartbeatDue, HeartbeatTime(), now);
  }
  if (mLifeEnd > now) return;
  mLifeEnd = kNever;
  mGuardingLost = true;
}

}  // namespace NDevices
