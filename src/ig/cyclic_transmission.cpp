#include "ig/cyclic_transmission.h"

#include <algorithm>

namespace NIg {

void CyclicTransmission::Start(NSdk::IRuntime& runtime, NSdk::ITimerSink& sink, const Snapshot& items) {
  Stop();
  for (const SnapshotEntry& entry : items) {
    auto message = std::make_unique<ZTimerInfo>();
    message->item = entry.item;
    message->listPosition = entry.listPosition;
    message->delay = message->item->GetDelay();
    message->cycle = message->item->GetCycle();
    if (FAILED(runtime.CreateTimer(&sink, message->timer.Receive())) || !message->timer) continue;
    message->timer->Start(message->delay, /*periodic=*/0);
    mMessages.push_back(std::move(message));
  }
}

void CyclicTransmission::Stop() {
  for (const auto& message : mMessages) message->timer->Stop();
  mMessages.clear();
}

ZTimerInfo* CyclicTransmission::Find(const NSdk::ITimer* timer) {
  const auto found = std::find_if(mMessages.begin(), mMessages.end(),
                                  [timer](const auto& message) { return message->timer.Get() == timer; });
  return found == mMessages.end() ? nullptr : found->get();
}

void CyclicTransmission::Expired(ZTimerInfo& message) {
  if (!message.firstShot) return;
  message.firstShot = 0;
  message.timer->Stop();
  message.timer->Start(message.cycle, /*periodic=*/1);
}

}  // namespace NIg
