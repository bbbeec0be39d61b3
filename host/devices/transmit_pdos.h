#pragma once
// Transmit PDOs (CiA 301, 7.2.2 and 7.5.2.37): objects that are sent on SYNC, on change, by a timer or on
// request.

#include <vector>

#include "host/devices/frame_sink.h"
#include "host/devices/pdo_mapping.h"

namespace NDevices {

class TransmitPdos {
 public:
  TransmitPdos(ObjectDictionary& objects, FrameSink& bus) : mObjects(objects), mBus(bus) {}

  /// Reads parameters and mappings anew; counts and timers begin again.
  void Load(Time now);

  /// The device has become operational, which is an event to every event-driven PDO.
  void Start(Time now);
  void Stop();

  void OnSync(Time now);
  /// An object has got another value.
  void OnChanged(const Entry& entry, Time now);
  /// A remote frame asks for the PDO.
  void OnRemoteFrame(const NSdk::CanFrame& frame, Time now);

  Time NextDeadline() const;
  void OnDeadline(Time now);

 private:
  struct Pdo {
    std::uint32_t cobId = 0;
    std::uint32_t type = 0;
    Time inhibitTime{};
    Time eventTime{};  // zero: no event timer
    PdoMapping mapping;

    std::uint32_t syncCount = 0;
    bool event = false;      // something happened that has not been sent
    Time allowedFrom{};      // by the inhibit time
    Time eventDue = kNever;  // by the event timer

    bool IsEventDriven() const { return type >= kFirstEventDriven; }
  };

  void Begin(Pdo& pdo, Time now) const;
  void Send(Pdo& pdo, Time now);
  void SendEvent(Pdo& pdo, Time now);

  ObjectDictionary& mObjects;
  FrameSink& mBus;
  std::vector<Pdo> mPdos;
  bool mRunning = false;
};

}  // namespace NDevices
