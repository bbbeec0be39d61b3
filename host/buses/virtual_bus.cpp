#include "host/buses/virtual_bus.h"

#include <algorithm>

namespace NBuses {

void VirtualBus::Send(VirtualPort& sender, const NSdk::CanFrame& frame) {
  const NRuntime::Time time = mClock.Now();
  sender.mEvents->OnSent(frame, time);
  // A copy: who hears of a frame may leave the bus.
  const std::vector<VirtualPort*> ports = mPorts;
  for (VirtualPort* port : ports) {
    const bool stillHere = std::find(mPorts.begin(), mPorts.end(), port) != mPorts.end();
    if (port != &sender && stillHere) port->mEvents->OnReceived(frame, time);
  }
}

void VirtualPort::Open(NRuntime::CanAdapterEvents& events) {
  Close();
  mEvents = &events;
  mBus->Join(*this);
}

void VirtualPort::Close() {
  if (!mEvents) return;
  mBus->Leave(*this);
  mEvents = nullptr;
}

void VirtualPort::Send(const NSdk::CanFrame& frame) {
  if (mEvents) mBus->Send(*this, frame);
}

std::shared_ptr<VirtualBus> VirtualBuses::Get(const std::string& name) {
  std::weak_ptr<VirtualBus>& known = mBuses[name];
  std::shared_ptr<VirtualBus> bus = known.lock();
  if (!bus) known = bus = std::make_shared<VirtualBus>(mClock);
  return bus;
}

}  // namespace NBuses
