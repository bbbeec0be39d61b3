#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "com/com_ptr.h"
#include "common/event_subscription.h"
#include "sdk/database_library.h"

namespace NChannels {

/// A CAN channel of the configuration and the higher-layer protocols that its databases describe.
struct Channel {
  std::uint32_t number = 0;
  bool j1939 = false;
  bool canopen = false;
  bool deviceNet = false;
  bool aerospace = false;
  bool nmea = false;
};

/// The flag of a channel that the attributes of a database mark: the first of the known attributes that it
/// has decides, whatever its value. Null: none.
bool Channel::*ProtocolOf(NSdk::ICanAttributes& database);

/// "CAN 2", "CAN 2 (CANopen)"
std::wstring DisplayName(const Channel& channel);

/// The module's one view of the host's CAN channels and of the databases that are assigned to them.
class ZChannelManager {
 public:
  ZChannelManager();
  ZChannelManager(const ZChannelManager&) = delete;
  ZChannelManager& operator=(const ZChannelManager&) = delete;

  /// Reads the databases again if their assignment has changed since the last call.
  void Refresh();
  /// Refreshes; differs from the last answer when databases were read again.
  std::uint32_t Revision();
  /// Asks the host for its channels: their number, at most 33.
  std::uint32_t ChannelCount();
  /// A channel at a position from 0, in the host's order.
  const Channel& At(std::uint32_t position) const { return mChannels.at(position); }

 private:
  class Sink;

  void GetCANDbs();
  void MarkProtocol(NSdk::IDatabaseManager& manager, std::uint32_t index, std::uint32_t channel);

  std::array<Channel, 33> mChannels;
  NCom::ComPtr<Sink> mSink;
  NCommon::EventSubscription mEvents;
  std::uint32_t mRevision = 0;
};

/// Made on first use.
ZChannelManager& TheChannelManager();
/// Ends the one there is, and lets go of the host and of its database library.
void ReleaseChannelManager();

}  // namespace NChannels
