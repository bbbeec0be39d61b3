#pragma once
// How a device shows that it lives: boot-up, and then heartbeat or answers to guarding (CiA 301, 7.2.8.3).

#include "host/devices/frame_sink.h"
#include "host/devices/nmt.h"
#include "host/devices/object_dictionary.h"

namespace NDevices {

class ErrorControl {
 public:
  ErrorControl(const ObjectDictionary& objects, FrameSink& bus, std::uint8_t nodeId)
      : mObjects(objects), mBus(bus), mNodeId(nodeId) {}

  /// Sends the boot-up message; heartbeat and guarding begin anew.
  void BootUp(Time now);

  /// The heartbeat time (1017h) was written: the period begins now.
  void OnHeartbeatTimeWritten(Time now);

  /// Answers if it is a remote frame for this node's error control and no heartbeat is produced.
  void OnFrame(const NSdk::CanFrame& frame, NmtState state, Time now);

  Time NextDeadline() const { return mHeartbeatDue < mLifeEnd ? mHeartbeatDue : mLifeEnd; }
  /// Sends a heartbeat that is due.
  void OnDeadline(NmtState state, Time now);

  /// Has the guarding stayed away for the node's life time (100Ch, 100Dh)?
  bool IsGuardingLost() const { return mGuardingLost; }

 private:
  Time HeartbeatTime() const;
  Time LifeTime() const;
  void SendState(std::uint8_t content);

  const ObjectDictionary& mObjects;
  FrameSink& mBus;
  std::uint8_t mNodeId;
  std::uint8_t mToggle = 0;  // 0 or 80h, of the next answer to guarding
  Time mHeartbeatDue = kNever;
  Time mLifeEnd = kNever;  // kNever until the first guarding
  bool mGuardingLost = false;
};

}  // namespace NDevices
