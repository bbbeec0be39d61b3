#include "host/devices/transmit_pdos.h"

#include <algorithm>

#include "host/devices/cob_id.h"

namespace NDevices {
namespace {

constexpr auto kInhibitUnit = std::chrono::microseconds(100);

}  // namespace

void TransmitPdos::Load(Time now) {
  mPdos.clear();
  for (const Entry& entry : mObjects) {
    const std::uint16_t index = entry.address.index;
    if (index < kTransmitPdoParameter || index >= kTransmitPdoParameter + kMaxPdoCount) continue;
    if (entry.address.subindex != kPdoCobId) continue;
    Pdo pdo;
    pdo.cobId = mObjects.Number(entry.address);
    if (!IsValid(pdo.cobId)) continue;
    pdo.type = mObjects.Number({index, kPdoTransmissionType}, 255);
    pdo.inhibitTime = kInhibitUnit * mObjects.Number({index, kPdoInhibitTime});
    pdo.eventTime = std::chrono::milliseconds(mObjects.Number({index, kPdoEventTimer}));
    pdo.mapping.Load(mObjects, static_cast<std::uint16_t>(index + kPdoMappingOffset), PdoDirection::Transmit);
    Begin(pdo, now);
    mPdos.push_back(std::move(pdo));
  }
}

void TransmitPdos::Begin(Pdo& pdo, Time now) const {
  pdo.syncCount = 0;
  pdo.event = false;
  const bool timed = mRunning && pdo.IsEventDriven() && pdo.eventTime != Time::zero();
  pdo.eventDue = timed ? now + pdo.eventTime : kNever;
}

void TransmitPdos::Start(Time now) {
  mRunning = true;
  for (Pdo& pdo : mPdos) {
    Begin(pdo, now);
    pdo.event = true;
    if (pdo.IsEventDriven()) SendEvent(pdo, now);
  }
}

void TransmitPdos::Stop() {
  mRunning = false;
  for (Pdo& pdo : mPdos) Begin(pdo, Time::zero());
}

void TransmitPdos::Send(Pdo& pdo, Time now) {
  NSdk::CanFrame frame = FrameTo(pdo.cobId, pdo.mapping.Length());
  pdo.mapping.Pack(frame.data);
  pdo.event = false;
  pdo.syncCount = 0;
  pdo.allowedFrom = now + pdo.inhibitTime;
  mBus.Send(frame);
}

// Now, or at the end of the inhibit time.
void TransmitPdos::SendEvent(Pdo& pdo, Time now) {
  pdo.event = true;
  if (now < pdo.allowedFrom) return;
  Send(pdo, now);
  if (pdo.eventTime != Time::zero()) pdo.eventDue = now + pdo.eventTime;
}

void TransmitPdos::OnSync(Time now) {
  if (!mRunning) return;
  for (Pdo& pdo : mPdos) {
    if (pdo.type > kLastSynchronous) continue;
    const bool due = pdo.type == kSynchronousAcyclic ? pdo.event : ++pdo.syncCount >= pdo.type;
    if (due) Send(pdo, now);
  }
}

void TransmitPdos::OnChanged(const Entry& entry, Time now) {
  if (!mRunning) return;
  for (Pdo& pdo : mPdos) {
    if (!pdo.mapping.Maps(entry)) continue;
    pdo.event = true;
    if (pdo.IsEventDriven()) SendEvent(pdo, now);
  }
}

void TransmitPdos::OnRemoteFrame(const NSdk::CanFrame& frame, Time now) {
  if (!mRunning) return;
  for (Pdo& pdo : mPdos) {
    if (Matches(frame, pdo.cobId) && (pdo.cobId & kCobIdNoRemote) == 0) Send(pdo, now);
  }
}

Time TransmitPdos::NextDeadline() const {
  Time next = kNever;
  for (const Pdo& pdo : mPdos) {
    if (!mRunning || !pdo.IsEventDriven()) continue;
    next = std::min(next, pdo.eventDue);
    if (pdo.event) next = std::min(next, pdo.allowedFrom);
  }
  return next;
}

void TransmitPdos::OnDeadline(Time now) {
  if (!mRunning) return;
  for (Pdo& pdo : mPdos) {
    if (!pdo.IsEventDriven()) continue;
    const bool timer = pdo.eventDue <= now;
    const Time next = timer ? NextEnd(pdo.eventDue, pdo.eventTime, now) : pdo.eventDue;
    if (timer || (pdo.event && pdo.allowedFrom <= now)) SendEvent(pdo, now);
    if (timer) pdo.eventDue = next;  // the timer keeps its rhythm, however late this call comes
  }
}

}  // namespace NDevices
