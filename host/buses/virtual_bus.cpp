#include "host/buses/virtual_bus.h"

#include <algorithm>

namespace NBuses {

VirtualBus::VirtualBus(NRuntime::Loop& loop) : mLoop(loop) {}

bool VirtualBus::SetBitRate(std::uint32_t bitRate) {
  if (mTraffic) return mTraffic->BitRate() == bitRate;
  mTraffic.emplace(mLoop, bitRate,
                   [this](VirtualPort* sender, const NSdk::CanFrame& frame, NRuntime::Time time) {
                     Deliver(sender, frame, time);
                   });
  return true;
}

void VirtualBus::Leave(VirtualPort& port) {
  std::erase(mPorts, &port);
  if (mTraffic) mTraffic->Leave(port);
}

bool VirtualBus::Send(VirtualPort& sender, const NSdk::CanFrame& frame) {
  if (mTraffic) return mTraffic->Queue(sender, frame);
  Deliver(&sender, frame, mLoop.Now());
  return true;
}

void VirtualBus::Deliver(VirtualPort* sender, const NSdk::CanFrame& frame, NRuntime::Time time) {
  // A copy: who hears of a frame may leave the bus.
  const std::vector<VirtualPort*> ports = mPorts;
  if (sender) sender->mEvents->OnSent(frame, time);
  for (VirtualPort* port : ports) {
    const bool stillHere = std::find(mPorts.begin(), mPorts.end(), port) != mPorts.end();
    if (port != sender && stillHere) port->mEvents->OnReceived(frame, time);
  }
}

void VirtualPort::Open(NRuntime::CanAdapterEvents& events) {
  Close();
  mEvents = &events;
  mHasLost = false;
  mBus->Join(*this);
}

void VirtualPort::Close() {
  if (!mEvents) return;
  mBus->Leave(*this);
  mEvents = nullptr;
}

void VirtualPort::Send(const NSdk::CanFrame& frame) {
  if (!mEvents || mBus->Send(*this, frame) || mHasLost) return;
  mHasLost = true;
  mEvents->OnTrouble("more is sent than the bit rate of the bus allows; frames are given up");
}

std::shared_ptr<VirtualBus> VirtualBuses::Get(const std::string& name) {
  std::weak_ptr<VirtualBus>& known = mBuses[name];
  std::shared_ptr<VirtualBus> bus = known.lock();
  if (!bus) known = bus = std::make_shared<VirtualBus>(mLoop);
  return bus;
}

}  // namespace NBuses
