// Expedited and segmented transfer (CiA 301, 7.2.4.2.2 to 7.2.4.2.7).

#include "sdo/engine/transfer.h"

namespace NSdo {

namespace {

bool Fits(const SdoChannel& ch, std::size_t bytes) { return bytes <= ch.size - ch.transferred; }

void Append(SdoChannel& ch, std::span<const std::uint8_t> data) {
  std::uint8_t* place = ch.buffer + ch.transferred;
  if (data.size() == kSegmentSize) {
    std::memcpy(place, data.data(), kSegmentSize);  // the usual segment: a copy of fixed length
  } else if (!data.empty()) {
    std::memcpy(place, data.data(), data.size());
  }
  ch.transferred += static_cast<std::uint32_t>(data.size());
}

void RequestSegment(SdoEngine& engine, SdoChannel& ch) {
  BuildOrFail(engine, ch,
              [&ch](SdoFrame& frame) { BuildUploadSegmentRequest(frame, ch.cobIdTx, ch.toggle); });
}

void SendSegment(SdoEngine& engine, SdoChannel& ch, std::uint32_t left) {
  const bool last = left <= kSegmentSize;
  const std::uint32_t size = last ? left : kSegmentSize;
  const std::uint8_t* data = ch.buffer + ch.transferred;
  ch.transferred += size;
  BuildOrFail(engine, ch,
              [&](SdoFrame& frame) { BuildDownloadSegment(frame, ch.cobIdTx, ch.toggle, data, size, last); });
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
    const auto data = ExpeditedData(frame);
    if (!Fits(ch, data.size())) return FailTransfer(engine, ch, kAbortLengthTooHigh);
    Append(ch, data);
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
  const auto data = SegmentData(frame);
  if (!Fits(ch, data.size())) return FailTransfer(engine, ch, kAbortLengthTooHigh);
  Append(ch, data);
  if (IsLastSegment(frame)) return CompleteTransfer(engine, ch);
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
