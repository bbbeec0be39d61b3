#pragma once
// What every transfer shares: how it lives and how it ends. The events of each kind are declared here too;
// each takes the channel that the frame is for.

#include "sdo/engine/abort_codes.h"
#include "sdo/engine/client.h"
#include "sdo/engine/driver.h"
#include "sdo/engine/frames.h"

namespace NSdo {

inline void RestartTimeout(SdoChannel& ch) { ch.remainingMs = ch.timeoutMs; }

/// Makes the channel idle and stops receiving for it. Does nothing for an idle channel.
void ReleaseTransfer(SdoEngine& engine, SdoChannel& ch);

/// The transfer has ended well.
void CompleteTransfer(SdoEngine& engine, SdoChannel& ch);

/// Ends the transfer with an abort frame. false: the frame was not queued; the transfer has ended all the
/// same.
bool AbortTransfer(SdoEngine& engine, SdoChannel& ch, std::uint8_t abortIndex);
inline void FailTransfer(SdoEngine& engine, SdoChannel& ch, std::uint8_t abortIndex) {
  AbortTransfer(engine, ch, abortIndex);
}

/// What SendOrFail does with a frame that cannot pass by the queue.
void QueueOrFail(SdoEngine& engine, SdoChannel& ch, const SdoFrame& frame);
/// Sends the next frame of the transfer, or fails the transfer for want of room. The channel may have moved
/// on when this returns, for the transmit hook may have fed the answer: send last.
inline void SendOrFail(SdoEngine& engine, SdoChannel& ch, const SdoFrame& frame) {
  if (SdoCanPass(engine)) return SdoPass(engine, frame);
  QueueOrFail(engine, ch, frame);
}

// Server's answers, one function per event.
void OnUploadInitiated(SdoEngine& engine, SdoChannel& ch, const SdoFrame& frame);
void OnUploadSegment(SdoEngine& engine, SdoChannel& ch, const SdoFrame& frame);
void OnDownloadResponse(SdoEngine& engine, SdoChannel& ch, const SdoFrame& frame);
void OnBlockDownloadInitiated(SdoEngine& engine, SdoChannel& ch, const SdoFrame& frame);
void OnBlockDownloadAck(SdoEngine& engine, SdoChannel& ch, const SdoFrame& frame);
void OnBlockDownloadEnd(SdoEngine& engine, SdoChannel& ch, const SdoFrame& frame);
void OnBlockUploadInitiated(SdoEngine& engine, SdoChannel& ch, const SdoFrame& frame);
void OnBlockUploadSegment(SdoEngine& engine, SdoChannel& ch, const SdoFrame& frame);
void OnBlockUploadEnd(SdoEngine& engine, SdoChannel& ch, const SdoFrame& frame);
void OnAbortReceived(SdoEngine& engine, SdoChannel& ch, const SdoFrame& frame);

}  // namespace NSdo
