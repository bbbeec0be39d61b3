// Block download (CiA 301, 7.2.4.2.8 to 7.2.4.2.10).

#include <algorithm>

#include "sdo/engine/crc.h"
#include "sdo/engine/transfer.h"

namespace NSdo {

namespace {

constexpr std::uint8_t kMaxBlockSize = 127;

std::uint32_t BytesLeft(const SdoChannel& ch) { return ch.size - ch.transferred; }

// The next segment, in a frame that is addressed.
void BuildNext(SdoChannel& ch, std::uint8_t sequence, SdoFrame& frame) {
  const std::uint8_t* data = ch.buffer + ch.transferred;
  const std::uint32_t left = BytesLeft(ch);
  if (left > kSegmentSize) {
    ch.transferred += kSegmentSize;
    return BuildFullSegment(frame, sequence, data);
  }
  ch.lastSegmentSize = static_cast<std::uint8_t>(left);
  ch.transferred += left;
  BuildShortSegment(frame, sequence | kLastBlockSegment, data, left);
}

// Each segment counts as transferred whether there is room for it or not. Without data one empty segment is
// sent. When the transmit queue is full the rest waits for the server, and the next sub-block is one segment
// shorter.
void SendSubBlock(SdoEngine& engine, SdoChannel& ch) {
  SdoFrame frame;
  Address(frame, ch.cobIdTx);
  for (std::uint8_t sequence = 1; sequence <= ch.blockSize; ++sequence) {
    if (BytesLeft(ch) == 0 && (ch.size != 0 || sequence > 1)) break;
    BuildNext(ch, sequence, frame);
    if (SdoCanPass(engine)) {
      SdoPass(engine, frame);
    } else if (!SdoQueueFrame(engine, frame)) {
      if (ch.blockSize >= 2) --ch.blockSize;
      break;
    }
    if (ch.state != SdoState::BlockDownloadSending) return;  // the transmit hook has ended the transfer
  }
  RestartTimeout(ch);
}

// The server has none of the sub-block: back by what the last segment held and by full segments. A server
// that repeats this can ask for more than was ever sent, and a short last segment leaves a remainder below
// seven: the position stops at the start of the data.
void Rewind(SdoChannel& ch) {
  const std::uint32_t bytes = ch.lastSegmentSize + ch.blockSize * kSegmentSize;
  ch.transferred -= std::min(ch.transferred, bytes);
}

}  // namespace

void OnBlockDownloadInitiated(SdoEngine& engine, SdoChannel& ch, const SdoFrame& frame) {
  if (ch.state != SdoState::BlockDownloadInitiated) return FailTransfer(engine, ch, kAbortCommand);
  const std::uint8_t blockSize = ServerBlockSize(frame);
  if (blockSize == 0 || blockSize > kMaxBlockSize) return FailTransfer(engine, ch, kAbortBlockSize);
  ch.blockSize = blockSize;
  ch.state = SdoState::BlockDownloadSending;
  SendSubBlock(engine, ch);
}

// The block size that the server proposes for the next sub-block is not taken over.
void OnBlockDownloadAck(SdoEngine& engine, SdoChannel& ch, const SdoFrame& frame) {
  if (ch.state != SdoState::BlockDownloadSending) return FailTransfer(engine, ch, kAbortCommand);
  const std::uint8_t acknowledged = AcknowledgedSequence(frame);
  if (acknowledged == 0) {
    Rewind(ch);
  } else if (acknowledged != ch.blockSize && BytesLeft(ch) != 0) {
    return FailTransfer(engine, ch, kAbortBlockSize);  // no partial retransmission
  }
  if (BytesLeft(ch) != 0) return SendSubBlock(engine, ch);
  ch.state = SdoState::BlockDownloadEnding;
  RestartTimeout(ch);
  SendOrFail(engine, ch, BlockDownloadEnd(ch, SdoCrc(ch.buffer, ch.size)));
}

void OnBlockDownloadEnd(SdoEngine& engine, SdoChannel& ch, const SdoFrame&) {
  if (ch.state == SdoState::BlockDownloadEnding) return CompleteTransfer(engine, ch);
  ch.abortCode = kSdoAbortCodes[kAbortCommand];  // noted, but the transfer goes on
}

}  // namespace NSdo
