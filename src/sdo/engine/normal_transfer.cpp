// Expedited and segmented transfer (CiA 301, 7.2.4.2.2 to 7.2.4.2.7).

#include "sdo/engine/transfer.h"

namespace NSdo {

namespace {

bool Fits(const SdoChannel& ch, std::size_t bytes) { return bytes <= ch.size - ch.transferred; }

// False: it does not fit.
bool Append(SdoChannel& ch, std::span<const std::uint8_t> data) {
  if (!Fits(ch, data.size())) return false;
  if (!data.empty()) std::memcpy(ch.buffer + ch.transferred, data.data(), data.size());
  ch.transferred += static_cast<std::uint32_t>(data.size());
  return true;
}

// The usual segment: a copy of fixed length.
bool AppendFull(SdoChannel& ch, const SdoFrame& frame) {
  const std::uint32_t place = ch.transferred;
  if (ch.size - place < kSegmentSize) return false;
  ch.transferred = place + kSegmentSize;
  std::memcpy(ch.buffer + place, frame.data + 1, kSegmentSize);
  return true;
}

void RequestSegment(SdoEngine& engine, SdoChannel& ch) {
  SdoFrame frame;
  BuildUploadSegmentRequest(frame, ch.cobIdTx, ch.toggle);
  SendOrFail(engine, ch, frame);
}

// Apart, so that the segments before it carry nothing of it.
[[gnu::noinline]] void SendLastSegment(SdoEngine& engine, SdoChannel& ch, std::uint32_t size) {
  SdoFrame frame;
  Address(frame, ch.cobIdTx);
  const std::uint8_t command = DownloadSegmentCommand(ch.toggle, size, true);
  BuildShortSegment(frame, command, ch.buffer + ch.transferred, size);
  ch.transferred += size;
  QueueOrFail(engine, ch, frame);
}

void SendSegment(SdoEngine& engine, SdoChannel& ch, std::uint32_t left) {
  if (left <= kSegmentSize) return SendLastSegment(engine, ch, left);
  SdoFrame frame;
  Address(frame, ch.cobIdTx);
  const std::uint8_t command = DownloadSegmentCommand(ch.toggle, kSegmentSize, false);
  BuildFullSegment(frame, command, ch.buffer + ch.transferred);
  ch.transferred += kSegmentSize;
  SendOrFail(engine, ch, frame);
}

}  // namespace

// Server's answer to an upload request, or its switch from block upload to a normal one. Servers are known to
// answer with another index than asked for; it is not compared.
void OnUploadInitiated(SdoEngine& engine, SdoChannel& ch, const SdoFrame& frame) {
  if (ch.state != SdoState::UploadInitiated && ch.state != SdoState::BlockUploadInitiated) {
    return FailTransfer(engine, ch, kAbortCommand);
  }
  RestartTimeout(ch);
  if (IsExpedited(frame)) {
    if (!Append(ch, ExpeditedData(frame))) return FailTransfer(engine, ch, kAbortLengthTooHigh);
    return CompleteTransfer(engine, ch);
  }
  if (IsSizeIndicated(frame) && !Fits(ch, IndicatedSize(frame))) {
    return FailTransfer(engine, ch, kAbortLengthTooHigh);
  }
  ch.state = SdoState::SegmentedUpload;
  ch.toggle = 0;
  RequestSegment(engine, ch);
}

void OnUploadSegment(SdoEngine& engine, SdoChannel& ch, const SdoFrame& frame) {
  if (ch.state != SdoState::SegmentedUpload) return FailTransfer(engine, ch, kAbortCommand);
  if (ToggleOf(frame) != ch.toggle) return FailTransfer(engine, ch, kAbortToggle);
  const bool more = IsFullSegment(frame);
  const bool fits = more ? AppendFull(ch, frame) : Append(ch, SegmentData(frame));
  if (!fits) return FailTransfer(engine, ch, kAbortLengthTooHigh);
  if (!more && IsLastSegment(frame)) return CompleteTransfer(engine, ch);
  ch.toggle ^= kToggleBit;
  RestartTimeout(ch);
  RequestSegment(engine, ch);
}

// Server's answer to a download request or to a segment.
void OnDownloadResponse(SdoEngine& engine, SdoChannel& ch, const SdoFrame& frame) {
  if (ch.state != SdoState::ExpeditedDownload && ch.state != SdoState::SegmentedDownload) {
    return FailTransfer(engine, ch, kAbortCommand);
  }
  RestartTimeout(ch);
  if (ToggleOf(frame) != ch.toggle) return FailTransfer(engine, ch, kAbortToggle);
  const bool answersSegment = AnswersSegment(frame);
  if (answersSegment) ch.toggle ^= kToggleBit;
  // The answer to the request confirms nothing yet when there are no bytes: one empty segment follows.
  const bool confirmed = answersSegment || ch.size != 0;
  const std::uint32_t left = ch.size - ch.transferred;
  if (left == 0 && confirmed) return CompleteTransfer(engine, ch);
  SendSegment(engine, ch, left);
}

}  // namespace NSdo
