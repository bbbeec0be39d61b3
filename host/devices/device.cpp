#include "host/devices/device.h"

#include <algorithm>
#include <stdexcept>

#include "host/devices/cob_id.h"
#include "host/devices/communication_rules.h"

namespace NDevices {
namespace {

constexpr std::uint8_t kMaxNode = 127;
constexpr std::uint16_t kFirstCommunicationObject = 0x1000;
constexpr std::uint16_t kLastCommunicationObject = 0x1FFF;
constexpr std::uint16_t kLastObject = 0xFFFF;
constexpr std::uint16_t kSdoServerParameter = 0x1200;
constexpr ObjectAddress kErrorHistory = {0x1003, 0};
constexpr std::uint16_t kConsumerHeartbeatTime = 0x1016;
constexpr std::uint16_t kHeartbeatTime = 0x1017;
constexpr ObjectAddress kSyncCobId = {0x1005, 0};
constexpr ObjectAddress kErrorBehaviour = {0x1029, 1};  // on loss of a peer: 0, 1 or 2

bool IsCommunicationObject(ObjectAddress address) {
  return address.index >= kFirstCommunicationObject && address.index <= kLastCommunicationObject;
}

bool IsWithin(std::uint16_t index, std::uint16_t first) {
  return index >= first && index < first + kMaxPdoCount;
}

const DeviceOptions& Checked(const DeviceOptions& options) {
  if (options.nodeId == 0 || options.nodeId > kMaxNode) {
    throw std::invalid_argument("the node-ID of a device is 1 to 127");
  }
  if (options.sdo.blockSize == 0 || options.sdo.blockSize > kMaxBlockSize) {
    throw std::invalid_argument("the block size of an SDO server is 1 to 127");
  }
  return options;
}

}  // namespace

Device::Device(DeviceOptions options, ObjectDictionary objects, FrameSink& bus)
    : mOptions(Checked(options)),
      mObjects(std::move(objects)),
      mPowerOnObjects(mObjects),
      mSdoAnswers(bus),
      mSdoServer(*this, mSdoAnswers, mOptions.misbehaviour, mOptions.sdo),
      mErrorControl(mObjects, bus, mOptions.nodeId),
      mHeartbeatConsumer(mObjects),
      mEmergency(mObjects, bus),
      mReceivePdos(mObjects, [this](Entry& entry, BytesView value) { StoreFromPdo(entry, value); }),
      mTransmitPdos(mObjects, bus) {}

void Device::PowerOn(Time now) {
  mEmergency.Reset();
  ResetTo(kLastObject, now);
}

void Device::PowerOff() {
  mSdoAnswers.Clear();
  mSdoServer.Reset();
  mEmergency.Allow(false);
  mTransmitPdos.Stop();
  mState = NmtState::Initialising;
}

// Objects from 1000h to `lastIndex` get their first values again, all services begin anew.
void Device::ResetTo(std::uint16_t lastIndex, Time now) {
  PowerOff();
  mObjects.CopyValues(mPowerOnObjects, kFirstCommunicationObject, lastIndex);
  mEmergency.ResetCommunication();
  mPeerLost = false;
  mSdoServer.Configure(mObjects.Number({kSdoServerParameter, 1}, 0x600u + mOptions.nodeId),
                       mObjects.Number({kSdoServerParameter, 2}, 0x580u + mOptions.nodeId));
  mHeartbeatConsumer.Load();
  mReceivePdos.Load();
  mTransmitPdos.Load(now);
  mErrorControl.BootUp(now);
  SetState(NmtState::PreOperational, now);
}

void Device::SetState(NmtState state, Time now) {
  if (state == mState) return;
  mState = state;
  if (!AllowsSdo(state)) {
    mSdoServer.Reset();
    mSdoAnswers.Clear();
  }
  mEmergency.Allow(AllowsEmergency(state));
  mReceivePdos.DropWaiting();
  if (AllowsPdo(state)) {
    mTransmitPdos.Start(now);
  } else {
    mTransmitPdos.Stop();
  }
}

void Device::OnNmtCommand(NmtCommand command, Time now) {
  switch (command) {
    case NmtCommand::ResetNode:
      return PowerOn(now);
    case NmtCommand::ResetCommunication:
      return ResetTo(kLastCommunicationObject, now);
    default:
      return SetState(StateAfter(command), now);
  }
}

void Device::OnFrame(const NSdk::CanFrame& frame, Time now) {
  if (mState == NmtState::Initialising) return;
  mNow = now;
  if (const auto command = NmtCommandFor(frame, mOptions.nodeId)) return OnNmtCommand(*command, now);
  mErrorControl.OnFrame(frame, mState, now);
  mHeartbeatConsumer.OnFrame(frame, now);
  CheckPeers();
  if (AllowsSdo(mState)) mSdoServer.OnFrame(frame, now);
  if (AllowsPdo(mState)) OnPdoFrame(frame, now);
}

void Device::OnPdoFrame(const NSdk::CanFrame& frame, Time now) {
  if (IsRemote(frame)) return mTransmitPdos.OnRemoteFrame(frame, now);
  if (Matches(frame, mObjects.Number(kSyncCobId, kCobIdNotValid))) {
    // Outputs first: a PDO that SYNC sends carries what SYNC has set.
    mReceivePdos.OnSync();
    return mTransmitPdos.OnSync(now);
  }
  const auto outcome = mReceivePdos.OnFrame(frame);
  if (outcome == ReceivePdos::Outcome::TooShort) mEmergency.Raise({kPdoTooShort, kCommunicationError, {}});
  if (outcome == ReceivePdos::Outcome::Taken) mEmergency.Clear(kPdoTooShort);
}

Time Device::NextDeadline() const {
  if (mState == NmtState::Initialising) return kNever;
  return std::min({mSdoAnswers.NextDeadline(), mSdoServer.NextDeadline(), mErrorControl.NextDeadline(),
                   mHeartbeatConsumer.NextDeadline(), mTransmitPdos.NextDeadline()});
}

void Device::OnDeadline(Time now) {
  if (mState == NmtState::Initialising) return;
  mNow = now;
  mSdoAnswers.OnDeadline(now);
  mSdoServer.OnDeadline(now);
  mErrorControl.OnDeadline(mState, now);
  while (const std::uint8_t node = mHeartbeatConsumer.OnDeadline(now)) OnPeerLost(node, now);
  if (mErrorControl.IsGuardingLost() && !mPeerLost) OnPeerLost(0, now);
  mTransmitPdos.OnDeadline(now);
}

// A heartbeat or the guarding has stayed away. CiA 301, 7.5.2.32: the device then leaves operational, unless
// the object says that it stays (1) or stops (2).
void Device::OnPeerLost(std::uint8_t node, Time now) {
  mPeerLost = true;
  mEmergency.Raise({kHeartbeatLost, kCommunicationError, {node}});
  const std::uint32_t behaviour = mObjects.Number(kErrorBehaviour);
  if (behaviour == 2) return SetState(NmtState::Stopped, now);
  if (behaviour == 0 && mState == NmtState::Operational) SetState(NmtState::PreOperational, now);
}

void Device::CheckPeers() {
  if (!mPeerLost || mErrorControl.IsGuardingLost() || mHeartbeatConsumer.IsAnyLost()) return;
  mPeerLost = false;
  mEmergency.Clear(kHeartbeatLost);
}

AbortCode Device::Read(ObjectAddress address, Bytes& value) {
  const Entry* entry = mObjects.Find(address);
  if (!entry) return MissingCode(mObjects, address);
  AbortCode code = CheckReadable(*entry);
  if (code == AbortCode::None) code = CheckAvailable(mObjects, address);
  if (code == AbortCode::None) value = entry->value;
  return code;
}

AbortCode Device::PrepareWrite(ObjectAddress address, std::optional<std::uint32_t> size,
                               std::uint32_t& limit) {
  const Entry* entry = mObjects.Find(address);
  if (!entry) return MissingCode(mObjects, address);
  AbortCode code = CheckWritable(*entry);
  if (code == AbortCode::None && size) code = CheckSize(*entry, *size);
  limit = entry->HasFixedSize() ? FixedSize(entry->type) : entry->maxSize;
  return code;
}

AbortCode Device::Write(ObjectAddress address, BytesView value, Time now) {
  Entry* entry = mObjects.Find(address);
  if (!entry) return MissingCode(mObjects, address);
  AbortCode code = CheckWritable(*entry);
  if (code == AbortCode::None) code = CheckSize(*entry, value.size());
  if (code == AbortCode::None) code = CheckLimits(*entry, value);
  if (code == AbortCode::None) code = CheckCommunicationRules(mObjects, address, value);
  if (code != AbortCode::None) return code;
  Store(*entry, value, now);
  return code;
}

// Every new value comes through here.
void Device::Store(Entry& entry, BytesView value, Time now) {
  const bool changed = !std::ranges::equal(entry.value, value);
  entry.value.assign(value.begin(), value.end());
  if (IsCommunicationObject(entry.address)) OnCommunicationObjectWritten(entry.address, now);
  if (changed) mTransmitPdos.OnChanged(entry, now);
}

// Who has read the object at start reads it again.
void Device::OnCommunicationObjectWritten(ObjectAddress address, Time now) {
  const std::uint16_t index = address.index;
  if (address == kErrorHistory) mEmergency.ClearHistory();
  if (index == kConsumerHeartbeatTime) mHeartbeatConsumer.Load();
  if (index == kHeartbeatTime) mErrorControl.OnHeartbeatTimeWritten(now);
  if (IsWithin(index, kReceivePdoParameter) || IsWithin(index, kReceivePdoMapping)) mReceivePdos.Load();
  if (IsWithin(index, kTransmitPdoParameter) || IsWithin(index, kTransmitPdoMapping)) mTransmitPdos.Load(now);
}

AbortCode Device::SetValue(ObjectAddress address, BytesView value, Time now) {
  Entry* entry = mObjects.Find(address);
  if (!entry) return MissingCode(mObjects, address);
  AbortCode code = CheckSize(*entry, value.size());
  if (code == AbortCode::None) code = CheckLimits(*entry, value);
  if (code == AbortCode::None) Store(*entry, value, now);
  return code;
}

// A PDO has no way to refuse: a value outside its limits changes nothing.
void Device::StoreFromPdo(Entry& entry, BytesView value) {
  if (CheckLimits(entry, value) == AbortCode::None) Store(entry, value, mNow);
}

}  // namespace NDevices
