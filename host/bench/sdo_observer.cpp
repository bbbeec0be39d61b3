#include "host/bench/sdo_observer.h"

#include <algorithm>

namespace NBench {
namespace {

constexpr unsigned kNodeMask = 0x7F;
constexpr unsigned kLastSegmentBit = 0x80;  // of a segment of a sub-block
constexpr unsigned kAbort = 0x80;
constexpr unsigned kBlockEnd = 0xC1;  // from either side, without the count of unused bytes
constexpr std::uint32_t kAbortTimeOut = 0x05040000;

// Command specifiers, bits 7..5 of the first byte. The same number means one thing from the client and
// another from the server.
enum ClientCommand : unsigned {
  kDownloadSegment = 0,
  kDownloadInitiate = 1,
  kUploadInitiate = 2,
  kUploadSegmentRequest = 3,
  kClientAbort = 4,
  kBlockUpload = 5,
  kBlockDownload = 6,
};
enum ServerCommand : unsigned {
  kUploadSegment = 0,
  kDownloadSegmentConfirmed = 1,
  kUploadInitiated = 2,
  kDownloadInitiated = 3,
  kServerAbort = 4,
  kBlockDownloadAnswer = 5,
  kBlockUploadAnswer = 6,
};

unsigned Command(const NSdk::CanFrame& frame) { return frame.data[0] >> 5; }
bool IsExpedited(const NSdk::CanFrame& frame) { return (frame.data[0] & 2) != 0; }
/// Bytes of an expedited transfer: 4 when the size is not indicated.
unsigned ExpeditedSize(const NSdk::CanFrame& frame) {
  return (frame.data[0] & 1) ? 4 - ((frame.data[0] >> 2) & 3) : 4;
}
unsigned SegmentSize(const NSdk::CanFrame& frame) { return 7 - ((frame.data[0] >> 1) & 7); }
bool IsLastSegment(const NSdk::CanFrame& frame) { return (frame.data[0] & 1) != 0; }
/// Bytes of the last segment of a block transfer that held no data.
unsigned UnusedBytes(const NSdk::CanFrame& frame) { return (frame.data[0] >> 2) & 7; }

}  // namespace

std::vector<SdoTransfer> SdoObserver::OnFrame(std::uint32_t channel, const NSdk::CanFrame& frame,
                                              NRuntime::Time time) {
  const unsigned function = frame.identifier & ~kNodeMask;
  const unsigned node = frame.identifier & kNodeMask;
  const bool other = (frame.flags & (NSdk::kFrameExtended | NSdk::kFrameRemote)) != 0;
  if (other || node == 0 || (function != 0x600 && function != 0x580)) return {};
  Conversation& conversation = mConversations[{channel, node}];
  conversation.transfer.channel = channel;
  conversation.transfer.node = node;
  if (function == 0x600) {
    OnRequest(conversation, frame, time);
  } else if (conversation.phase != Phase::Idle) {
    OnResponse(conversation, frame, time);
  }
  return std::exchange(mEnded, {});
}

std::vector<SdoTransfer> SdoObserver::Finish(NRuntime::Time time) {
  for (auto& [key, conversation] : mConversations) {
    if (conversation.phase != Phase::Idle) End(conversation, SdoOutcome::TimedOut, time);
  }
  return std::exchange(mEnded, {});
}

void SdoObserver::Begin(Conversation& conversation, SdoDirection direction, SdoKind kind,
                        const NSdk::CanFrame& frame, NRuntime::Time time) {
  if (conversation.phase != Phase::Idle) End(conversation, SdoOutcome::TimedOut, time);
  SdoTransfer transfer;
  transfer.channel = conversation.transfer.channel;
  transfer.node = conversation.transfer.node;
  transfer.index = static_cast<std::uint16_t>(frame.data[1] | frame.data[2] << 8);
  transfer.subIndex = frame.data[3];
  transfer.direction = direction;
  transfer.kind = kind;
  transfer.started = time;
  conversation.transfer = std::move(transfer);
  conversation.phase = Phase::Running;
  conversation.lastSegment = 0;
  conversation.lastConfirmed = false;
  conversation.lastDownloadSegment = false;
}

void SdoObserver::End(Conversation& conversation, SdoOutcome outcome, NRuntime::Time time) {
  conversation.phase = Phase::Idle;
  conversation.transfer.outcome = outcome;
  conversation.transfer.ended = time;
  mEnded.push_back(conversation.transfer);
}

void SdoObserver::OnAbort(Conversation& conversation, const NSdk::CanFrame& frame, NRuntime::Time time) {
  if (conversation.phase == Phase::Idle) return;
  std::uint32_t code = 0;
  for (int byte = 7; byte >= 4; --byte) code = code << 8 | frame.data[byte];
  conversation.transfer.abortCode = code;
  End(conversation, code == kAbortTimeOut ? SdoOutcome::TimedOut : SdoOutcome::Aborted, time);
}

void SdoObserver::OnRequest(Conversation& conversation, const NSdk::CanFrame& frame, NRuntime::Time time) {
  SdoTransfer& transfer = conversation.transfer;
  if (conversation.phase == Phase::DownloadBlock && TakeBlockFrame(conversation, frame)) return;
  switch (Command(frame)) {
    case kUploadInitiate:
      return Begin(conversation, SdoDirection::Upload, SdoKind::Expedited, frame, time);
    case kDownloadInitiate:
      Begin(conversation, SdoDirection::Download,
            IsExpedited(frame) ? SdoKind::Expedited : SdoKind::Segmented, frame, time);
      if (IsExpedited(frame)) Append(transfer, frame.data + 4, ExpeditedSize(frame));
      return;
    case kDownloadSegment:
      if (conversation.phase != Phase::Running || transfer.kind != SdoKind::Segmented) return;
      Append(transfer, frame.data + 1, SegmentSize(frame));
      conversation.lastDownloadSegment = IsLastSegment(frame);
      return;
    case kBlockDownload:
      return Begin(conversation, SdoDirection::Download, SdoKind::Block, frame, time);
    case kBlockUpload:
      switch (frame.data[0] & 3) {
        case 0:
          return Begin(conversation, SdoDirection::Upload, SdoKind::Block, frame, time);
        case 1:  // the client confirms the end
          if (conversation.phase == Phase::Running) End(conversation, SdoOutcome::Ok, time);
          return;
        case 2:
          if (conversation.phase == Phase::UploadBlock) Acknowledge(conversation, frame.data[1]);
          return;
        default:  // the client lets the server start
          if (conversation.phase == Phase::Running) conversation.phase = Phase::UploadBlock;
          return;
      }
    case kClientAbort:
      return OnAbort(conversation, frame, time);
    default:
      return;
  }
}

void SdoObserver::OnResponse(Conversation& conversation, const NSdk::CanFrame& frame, NRuntime::Time time) {
  SdoTransfer& transfer = conversation.transfer;
  if (conversation.phase == Phase::UploadBlock && TakeBlockFrame(conversation, frame)) return;
  switch (Command(frame)) {
    case kUploadInitiated:  // a block upload is answered so by a server that switches the protocol
      transfer.kind = IsExpedited(frame) ? SdoKind::Expedited : SdoKind::Segmented;
      if (!IsExpedited(frame)) return;
      Append(transfer, frame.data + 4, ExpeditedSize(frame));
      return End(conversation, SdoOutcome::Ok, time);
    case kUploadSegment:
      Append(transfer, frame.data + 1, SegmentSize(frame));
      if (IsLastSegment(frame)) End(conversation, SdoOutcome::Ok, time);
      return;
    case kDownloadInitiated:
      if (transfer.kind == SdoKind::Expedited) End(conversation, SdoOutcome::Ok, time);
      return;
    case kDownloadSegmentConfirmed:
      if (conversation.lastDownloadSegment) End(conversation, SdoOutcome::Ok, time);
      return;
    case kBlockDownloadAnswer:
      switch (frame.data[0] & 3) {
        case 0:
          conversation.phase = Phase::DownloadBlock;
          return;
        case 1:
          return End(conversation, SdoOutcome::Ok, time);
        default:
          return Acknowledge(conversation, frame.data[1]);
      }
    case kServerAbort:
      return OnAbort(conversation, frame, time);
    default:
      return;
  }
}

// Inside a sub-block every frame of the sender is a segment, whatever it looks like: but an abort, which
// would be segment 0, and the end command behind the last segment.
bool SdoObserver::TakeBlockFrame(Conversation& conversation, const NSdk::CanFrame& frame) {
  if (frame.data[0] == kAbort) return false;
  if (conversation.lastConfirmed && (frame.data[0] & 0xE3) == kBlockEnd) {
    TakeBack(conversation.transfer, UnusedBytes(frame));
    conversation.phase = Phase::Running;
  } else {
    KeepSegment(conversation, frame);
  }
  return true;
}

void SdoObserver::KeepSegment(Conversation& conversation, const NSdk::CanFrame& frame) {
  const unsigned sequence = frame.data[0] & ~kLastSegmentBit;
  std::copy(frame.data + 1, frame.data + 8, conversation.segments[sequence].begin());
  conversation.highestSegment = std::max(conversation.highestSegment, sequence);
  if (frame.data[0] & kLastSegmentBit) conversation.lastSegment = sequence;
}

// What lies behind the acknowledged segment is sent again. A receiver may claim more than was sent.
void SdoObserver::Acknowledge(Conversation& conversation, unsigned sequence) {
  const unsigned acknowledged = std::min(sequence, conversation.highestSegment);
  for (unsigned number = 1; number <= acknowledged; ++number) {
    Append(conversation.transfer, conversation.segments[number].data(), 7);
  }
  conversation.lastConfirmed = conversation.lastSegment != 0 && acknowledged >= conversation.lastSegment;
  conversation.lastSegment = 0;
  conversation.highestSegment = 0;
}

void SdoObserver::Append(SdoTransfer& transfer, const std::uint8_t* data, unsigned size) {
  transfer.bytes += size;
  const std::size_t room = kMaxKeptData - transfer.data.size();
  transfer.data.insert(transfer.data.end(), data, data + std::min<std::size_t>(size, room));
}

void SdoObserver::TakeBack(SdoTransfer& transfer, unsigned size) {
  transfer.bytes -= std::min<std::uint64_t>(transfer.bytes, size);
  if (transfer.data.size() > transfer.bytes) transfer.data.resize(static_cast<std::size_t>(transfer.bytes));
}

}  // namespace NBench
