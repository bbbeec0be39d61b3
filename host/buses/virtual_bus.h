#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/buses/bus_traffic.h"
#include "host/runtime/can_adapter.h"

namespace NBuses {

class VirtualPort;

/// A bus inside this program. Without a bit rate a frame is on it the moment it is sent: all other ports
/// receive it with the time stamp under which its sender sees it sent. With one, frames take the time that
/// they take on a real bus, one after the other.
class VirtualBus {
 public:
  explicit VirtualBus(NRuntime::Loop& loop);
  VirtualBus(const VirtualBus&) = delete;
  VirtualBus& operator=(const VirtualBus&) = delete;

  /// In bits per second. False: it has another one.
  bool SetBitRate(std::uint32_t bitRate);
  /// Of a bus that has one.
  std::uint32_t BitRate() const { return mTraffic->BitRate(); }

  void Join(VirtualPort& port) { mPorts.push_back(&port); }
  void Leave(VirtualPort& port);
  /// False: too many frames of this port wait for the bus.
  bool Send(VirtualPort& sender, const NSdk::CanFrame& frame);
  bool IsSending(const VirtualPort& port) const { return mTraffic && mTraffic->IsSending(port); }

 private:
  void Deliver(VirtualPort* sender, const NSdk::CanFrame& frame, NRuntime::Time time);

  NRuntime::Loop& mLoop;
  std::vector<VirtualPort*> mPorts;
  std::optional<BusTraffic> mTraffic;  // empty: frames take no time
};

/// One channel's place on a virtual bus.
class VirtualPort final : public NRuntime::CanAdapter {
 public:
  explicit VirtualPort(std::shared_ptr<VirtualBus> bus) : mBus(std::move(bus)) {}
  ~VirtualPort() override { Close(); }

  void Open(NRuntime::CanAdapterEvents& events) override;
  void Close() override;
  void Send(const NSdk::CanFrame& frame) override;
  bool IsSending() const override { return mBus->IsSending(*this); }

 private:
  friend class VirtualBus;

  std::shared_ptr<VirtualBus> mBus;
  NRuntime::CanAdapterEvents* mEvents = nullptr;  // null: closed
  bool mHasLost = false;                          // frames, since it was opened
};

/// The virtual buses of a program by name; the one without a name is a bus like the others.
class VirtualBuses {
 public:
  explicit VirtualBuses(NRuntime::Loop& loop) : mLoop(loop) {}

  /// A bus lives as long as somebody holds it.
  std::shared_ptr<VirtualBus> Get(const std::string& name);

 private:
  NRuntime::Loop& mLoop;
  std::map<std::string, std::weak_ptr<VirtualBus>> mBuses;
};

}  // namespace NBuses
