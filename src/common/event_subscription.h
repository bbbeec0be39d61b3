#pragma once

#include <cstdint>

#include "com/com_ptr.h"
#include "sdk/host_application.h"

namespace NCommon {

/// A subscription to events of the host application, withdrawn with this object at the latest.
class EventSubscription {
 public:
  EventSubscription() = default;
  ~EventSubscription() { End(); }
  EventSubscription(const EventSubscription&) = delete;
  EventSubscription& operator=(const EventSubscription&) = delete;

  /// Subscribes an object that has the interface `Sink`, instead of what was subscribed before. Nothing comes
  /// of a host that has no such events or refuses. The host keeps the sink until End().
  template <class Sink>
  void Begin(IUnknown* sink) {
    Begin(NSdk::IidOf<Sink>(), sink);
  }
  void End();

 private:
  void Begin(REFIID sinkIid, IUnknown* sink);

  NCom::ComPtr<NSdk::IEventSource> mSource;
  std::uint32_t mCookie = 0;
};

}  // namespace NCommon
