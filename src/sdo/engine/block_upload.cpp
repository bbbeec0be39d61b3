// Block upload (CiA 301, 7.2.4.2.11 to 7.2.4.2.14).

#include "sdo/engine/crc.h"
#include "sdo/engine/transfer.h"

namespace NSdo {

namespace {

// Stores what fits. Every segment counts seven bytes, the last one too, until the end frame says how many of
// them were data; only a segment that begins behind the end of the buffer has no place at all.
bool Store(SdoChannel& ch, const SdoFrame& frame) {
  const std::uint32_t place = ch.transferred;
  if (place > ch.size) return false;
  const std::uint32_t room = ch.size - place;
  ch.transferred = place + kSegmentSize;
  ++ch.sequence;
  if (room >= kSegmentSize) {
    std::memcpy(ch.buffer + place, frame.data + 1, kSegmentSize);
  } else if (room != 0) {
    std::memcpy(ch.buffer + place, frame.data + 1, room);
  }
  return true;
}

// Apart, so that the segments between two acknowledges carry nothing of it.
[[gnu::noinline]] void Acknowledge(SdoEngine& engine, SdoChannel& ch) {
  const SdoFrame frame = BlockUploadAcknowledge(ch.cobIdTx, ch.sequence, ch.blockSize);
  ch.sequence = 0;
  SendOrFail(engine, ch, frame);
}

}  // namespace

void OnBlockUploadInitiated(SdoEngine& engine, SdoChannel& ch, const SdoFrame& frame) {
  if (ch.state != SdoState::BlockUploadInitiated) return FailTransfer(engine, ch, kAbortCommand);
  if (!NamesObject(frame, ch.index, ch.subindex)) return FailTransfer(engine, ch, kAbortParameter);
  if (IsBlockSizeIndicated(frame) && IndicatedSize(frame) > ch.size) {
    return FailTransfer(engine, ch, kAbortLengthTooHigh);
  }
  ch.state = SdoState::BlockUploadReceiving;
  ch.hasCrc = HasServerCrc(frame);
  RestartTimeout(ch);
  SendOrFail(engine, ch, BlockUploadStart(ch.cobIdTx));
}

// Any frame while a sub-block is received.
void OnBlockUploadSegment(SdoEngine& engine, SdoChannel& ch, const SdoFrame& frame) {
  if (BlockSequence(frame) != ch.sequence + 1) return FailTransfer(engine, ch, kAbortSequence);
  if (ch.sequence > ch.blockSize) return FailTransfer(engine, ch, kAbortBlockSize);
  if (!Store(ch, frame)) return FailTransfer(engine, ch, kAbortOutOfMemory);
  RestartTimeout(ch);
  const bool last = IsLastBlockSegment(frame);
  if (last) ch.state = SdoState::BlockUploadEnding;
  if (last || ch.sequence == ch.blockSize) Acknowledge(engine, ch);
}

void OnBlockUploadEnd(SdoEngine& engine, SdoChannel& ch, const SdoFrame& frame) {
  if (ch.state != SdoState::BlockUploadEnding) return FailTransfer(engine, ch, kAbortCommand);
  ch.lastSegmentSize = UnusedBytesAtEnd(frame);
  ch.transferred -= ch.lastSegmentSize;
  // More data than the buffer holds: neither the CRC nor the owner may read on behind it.
  if (ch.transferred > ch.size) return FailTransfer(engine, ch, kAbortOutOfMemory);
  if (ch.hasCrc && SdoCrc(ch.buffer, ch.transferred) != CrcAtEnd(frame)) {
    return FailTransfer(engine, ch, kAbortCrc);
  }
  if (!SdoQueueFrame(engine, BlockUploadEnd(ch.cobIdTx))) return FailTransfer(engine, ch, kAbortOutOfMemory);
  CompleteTransfer(engine, ch);
}

}  // namespace NSdo
