#pragma once
// Watches the heartbeats of other nodes (CiA 301, 7.2.8.3.2.2 and 7.5.2.19).

#include <vector>

#include "host/devices/frame_sink.h"
#include "host/devices/object_dictionary.h"

namespace NDevices {

class HeartbeatConsumer {
 public:
  explicit HeartbeatConsumer(const ObjectDictionary& objects) : mObjects(objects) {}

  /// Reads the list (1016h); every watch begins again with the first heartbeat.
  void Load();

  void OnFrame(const NSdk::CanFrame& frame, Time now);

  /// Does any heartbeat stay away?
  bool IsAnyLost() const;

  Time NextDeadline() const;
  /// The node whose heartbeat has stayed away, 0 if none did. Said once of each: call until 0
  /// comes.
  std::uint8_t OnDeadline(Time now);

 private:
  struct Watch {
    std::uint8_t node;
    Time period;
    Time due = kNever;
    bool lost = false;
  };

  const ObjectDictionary& mObjects;
  std::vector<Watch> mWatches;
};

}  // namespace NDevices
