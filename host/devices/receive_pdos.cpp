#include "host/devices/receive_pdos.h"

#include "host/devices/cob_id.h"

namespace NDevices {

void ReceivePdos::Load() {
  mPdos.clear();
  for (const Entry& entry : mObjects) {
    const std::uint16_t index = entry.address.index;
    if (index < kReceivePdoParameter || index >= kReceivePdoParameter + kMaxPdoCount) continue;
    if (entry.address.subindex != kPdoCobId) continue;
    Pdo pdo;
    pdo.cobId = mObjects.Number(entry.address);
    if (!IsValid(pdo.cobId)) continue;
    pdo.synchronous = mObjects.Number({index, kPdoTransmissionType}, 255) <= kLastSynchronous;
    pdo.mapping.Load(mObjects, static_cast<std::uint16_t>(index + kPdoMappingOffset), PdoDirection::Receive);
    mPdos.push_back(std::move(pdo));
  }
}

void ReceivePdos::DropWaiting() {
  for (Pdo& pdo : mPdos) pdo.waits = false;
}

ReceivePdos::Outcome ReceivePdos::OnFrame(const NSdk::CanFrame& frame) {
  Outcome outcome = Outcome::NotForThese;
  for (Pdo& pdo : mPdos) {
    if (IsRemote(frame) || !Matches(frame, pdo.cobId)) continue;
    if (LengthOf(frame) < pdo.mapping.Length()) return Outcome::TooShort;
    outcome = Outcome::Taken;
    if (pdo.synchronous) {
      pdo.received = frame;
      pdo.waits = true;
    } else {
      pdo.mapping.Unpack(frame.data, mStore);
    }
  }
  return outcome;
}

void ReceivePdos::OnSync() {
  for (Pdo& pdo : mPdos) {
    if (pdo.waits) pdo.mapping.Unpack(pdo.received.data, mStore);
    pdo.waits = false;
  }
}

}  // namespace NDevices
