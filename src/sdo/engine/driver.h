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

/// Offers a frame to the bus; while the node is stopped it is dropped. false: it has to be kept.
inline bool SdoTransmit(const SdoEngine& engine, const SdoFrame& frame) {
  const SdoHooks& hooks = engine.hooks;
  if (engine.nodeState == kNodeStopped || hooks.transmit == nullptr) return true;
  return hooks.transmit(hooks.owner, frame) != SdoSent::Keep;
}

/// Can a frame pass by the queue, straight to the bus?
inline bool SdoCanPass(const SdoEngine& engine) {
  return (!engine.driver || !engine.driver->closing) && engine.client->transmit.IsIdle();
}
/// A frame that has passed is to be kept.
void SdoKeepPassed(SdoEngine& engine, const SdoFrame& frame);
/// Hands over a frame that can pass.
inline void SdoPass(SdoEngine& engine, const SdoFrame& frame) {
  engine.client->transmit.BeginPassing();
  if (!SdoTransmit(engine, frame)) return SdoKeepPassed(engine, frame);
  SdoQueue& queue = engine.client->transmit;
  queue.EndPassing();
  if (!queue.IsEmpty()) SdoDrainTransmit(engine);
}

/// Sends a frame behind those that wait, as far as the bus takes them. false: queue full. While the link
/// closes nothing is queued, which counts as done.
bool SdoQueueFrame(SdoEngine& engine, const SdoFrame& frame);

}  // namespace NSdo
