#pragma once
// A simulated CANopen device (CiA 301). It has no thread and no clock: its owner hands it the frames of the
// bus and the time, and comes back at the deadline that it names.

#include <optional>

#include "host/devices/emergency.h"
#include "host/devices/error_control.h"
#include "host/devices/heartbeat_consumer.h"
#include "host/devices/misbehaviour.h"
#include "host/devices/receive_pdos.h"
#include "host/devices/sdo_server.h"
#include "host/devices/transmit_pdos.h"

namespace NDevices {

struct DeviceOptions {
  std::uint8_t nodeId = 1;  ///< 1..127
  SdoServerOptions sdo;
  Misbehaviour misbehaviour;
};

class Device final : private ObjectAccess {
 public:
  /// `objects` are its values at power-on. Frames leave through `bus`, which must outlive the device. Throws
  /// std::invalid_argument when the node-ID or the block size is out of range.
  Device(DeviceOptions options, ObjectDictionary objects, FrameSink& bus);
  Device(const Device&) = delete;
  Device& operator=(const Device&) = delete;

  /// Sends the boot-up message and is pre-operational. Before, and after PowerOff, nothing comes from the
  /// device, whatever happens. Times must never decrease from call to call.
  void PowerOn(Time now);
  void PowerOff();

  void OnFrame(const NSdk::CanFrame& frame, Time now);

  /// kNever: nothing to do without a frame. It may be earlier after any other call.
  Time NextDeadline() const;
  /// At the deadline or later; earlier nothing happens.
  void OnDeadline(Time now);

  /// Initialising: not powered.
  NmtState State() const { return mState; }
  const ObjectDictionary& Objects() const { return mObjects; }
  Misbehaviour& Faults() { return mOptions.misbehaviour; }

  /// The process behind the device changes a value, an input for instance, whatever access others have; it is
  /// an event to the PDOs that carry it. The code says what is wrong with object or value.
  AbortCode SetValue(ObjectAddress address, BytesView value, Time now);

  /// As Emergency says.
  bool RaiseError(const DeviceError& error) { return mEmergency.Raise(error); }
  bool ClearError(std::uint16_t code) { return mEmergency.Clear(code); }

 private:
  AbortCode Read(ObjectAddress address, Bytes& value) override;
  AbortCode PrepareWrite(ObjectAddress address, std::optional<std::uint32_t> size,
                         std::uint32_t& limit) override;
  AbortCode Write(ObjectAddress address, BytesView value, Time now) override;

  void OnNmtCommand(NmtCommand command, Time now);
  void ResetTo(std::uint16_t lastIndex, Time now);
  void SetState(NmtState state, Time now);
  void OnPdoFrame(const NSdk::CanFrame& frame, Time now);
  void OnCommunicationObjectWritten(ObjectAddress address, Time now);
  void Store(Entry& entry, BytesView value, Time now);
  void StoreFromPdo(Entry& entry, BytesView value);
  void CheckPeers();
  void OnPeerLost(std::uint8_t node, Time now);

  DeviceOptions mOptions;
  ObjectDictionary mObjects;
  const ObjectDictionary mPowerOnObjects;
  NmtState mState = NmtState::Initialising;
  Time mNow{};             // of the event that is handled
  bool mPeerLost = false;  // and an error stands for it

  DelayedSender mSdoAnswers;
  SdoServer mSdoServer;
  ErrorControl mErrorControl;
  HeartbeatConsumer mHeartbeatConsumer;
  Emergency mEmergency;
  ReceivePdos mReceivePdos;
  TransmitPdos mTransmitPdos;
};

}  // namespace NDevices
