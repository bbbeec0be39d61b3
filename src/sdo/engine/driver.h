#pragma once
// The driver link: where received frames come in and frames to send go out.

#include "sdo/engine/client.h"

namespace NSdo {

struct SdoDriverLink {
  void* handle = nullptr;  ///< what openDriver gave; the engine's mailbox if there is no such hook
  bool closing = false;    ///< nothing is queued or read any more
};

/// Resets the receive filter, opens and configures the driver. Does nothing if the link exists.
/// SDO_E_NOMEM, SDO_E_DRIVER_INIT, SDO_E_DRIVER_OPEN, SDO_E_DRIVER_CONFIG.
SdoStatus SdoDriverInit(SdoEngine& engine);
/// Gives the transmit queue a last chance to drain, then closes the driver.
void SdoDriverStop(SdoEngine& engine);

/// Sends what is queued, as far as the bus takes it; while the node is stopped it is dropped.
inline void SdoDrain(SdoEngine& engine, SdoQueue& queue) {
  const SdoHooks& hooks = engine.hooks;
  while (const SdoFrame* frame = queue.TakeRead()) {
    const bool send = engine.nodeState != kNodeStopped && hooks.transmit != nullptr;
    if (send && hooks.transmit(hooks.owner, *frame) == SdoSent::Keep) return queue.AbandonRead();
    queue.CommitRead();
  }
}

/// Lets `fill` write a frame into a slot of the transmit queue and drains the queue. false: queue full. While
/// the link closes nothing is queued, which counts as done.
template <class Fill>
bool SdoQueueBuilt(SdoEngine& engine, const Fill& fill) {
  if (engine.driver && engine.driver->closing) return true;
  SdoQueue& queue = engine.client->transmit;
  SdoFrame* slot = queue.TakeWrite();
  if (slot == nullptr) return false;
  fill(*slot);
  queue.CommitWrite();
  SdoDrain(engine, queue);
  return true;
}

/// The same with a frame that is ready.
bool SdoQueueFrame(SdoEngine& engine, const SdoFrame& frame);

}  // namespace NSdo
