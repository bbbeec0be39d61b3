#include "host/devices/delayed_sender.h"

namespace NDevices {

void DelayedSender::Send(const NSdk::CanFrame& frame, Time delay, Time now) {
  if (delay <= Time::zero() && mWaiting.empty()) return mBus.Send(frame);
  if (mWaiting.size() < kCapacity) mWaiting.push_back({frame, now + delay});
}

void DelayedSender::OnDeadline(Time now) {
  while (!mWaiting.empty() && mWaiting.front().due <= now) {
    const NSdk::CanFrame frame = mWaiting.front().frame;
    mWaiting.pop_front();
    mBus.Send(frame);
  }
}

}  // namespace NDevices
