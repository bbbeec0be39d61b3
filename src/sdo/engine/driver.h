#pragma once
// The driver link: where received frames come in and frames to send go out.

#include "sdo/engine/engine.h"

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

/// Copies the frame into the transmit queue and drains it. false: queue full. While the link closes the frame
/// is dropped, which counts as queued.
bool SdoQueueFrame(SdoEngine& engine, const SdoFrame& frame);

/// Takes one received frame (mailbox first, then readFrame hook) into the receive queue; a frame that no
/// channel waits for, or that finds no room, is dropped. false: there was none.
bool SdoReadDriver(SdoEngine& engine);

}  // namespace NSdo
