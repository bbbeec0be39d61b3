#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/runtime/can_adapter.h"

namespace NBuses {

class VirtualPort;

/// A bus inside this program. A frame is on it the moment it is sent: all other ports receive it with the
/// time stamp under which its sender sees it sent.
class VirtualBus {
 public:
  explicit VirtualBus(const NRuntime::Clock& clock) : mClock(clock) {}
  VirtualBus(const VirtualBus&) = delete;
  VirtualBus& operator=(const VirtualBus&) = delete;

  void Join(VirtualPort& port) { mPorts.push_back(&port); }
  void Leave(VirtualPort& port) { std::erase(mPorts, &port); }
  void Send(VirtualPort& sender, const NSdk::CanFrame& frame);

 private:
  const NRuntime::Clock& mClock;
  std::vector<VirtualPort*> mPorts;
};

/// One channel's place on a virtual bus.
class VirtualPort final : public NRuntime::CanAdapter {
 public:
  explicit VirtualPort(std::shared_ptr<VirtualBus> bus) : mBus(std::move(bus)) {}
  ~VirtualPort() override { Close(); }

  void Open(NRuntime::CanAdapterEvents& events) override;
  void Close() override;
  void Send(const NSdk::CanFrame& frame) override;

 private:
  friend class VirtualBus;

  std::shared_ptr<VirtualBus> mBus;
  NRuntime::CanAdapterEvents* mEvents = nullptr;  // null: closed
};

/// The virtual buses of a program by name; the one without a name is a bus like the others.
class VirtualBuses {
 public:
  explicit VirtualBuses(const NRuntime::Clock& clock) : mClock(clock) {}

  /// A bus lives as long as somebody holds it.
  std::shared_ptr<VirtualBus> Get(const std::string& name);

 private:
  const NRuntime::Clock& mClock;
  std::map<std::string, std::weak_ptr<VirtualBus>> mBuses;
};

}  // namespace NBuses
