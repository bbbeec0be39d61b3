#include "sdo/engine/transfer.h"

#include <algorithm>

namespace NSdo {

namespace {

bool IsIdle(const SdoChannel& ch) { return ch.state <= SdoState::Idle; }

// The transfer is over and the channel free: the hook may start the next one at once.
void ReportCompletion(SdoEngine& engine, const SdoChannel& ch, bool success) {
  engine.finished = true;
  engine.succeeded = success;
  const SdoHooks& hooks = engine.hooks;
  if (hooks.completed != nullptr) {
    hooks.completed(hooks.owner, ch.channel, ch.index, ch.subindex, ch.buffer, success);
  }
}

bool CanStart(const SdoEngine& engine) {
  return engine.nodeState == kNodeOperational || engine.nodeState == kNodePreOperational;
}

struct Request {
  std::uint8_t channel;
  std::uint16_t index;
  std::uint8_t subindex;
  std::uint32_t size;
  const void* buffer;
};

SdoStatus FindIdleChannel(const SdoEngine& engine, const Request& request, SdoChannel*& found) {
  if (!CanStart(engine)) return SDO_E_STATE;
  if (!engine.client || request.channel == 0) return SDO_E_ARG;
  if (request.buffer == nullptr && request.size != 0) return SDO_E_ARG;
  SdoChannel* ch = SdoFindChannel(engine, request.channel);
  if (ch == nullptr) return SDO_E_NO_CHANNEL;
  if (ch->state != SdoState::Idle) return SDO_E_BUSY;
  if (!IsValidCobId(ch->cobIdRx) || !IsValidCobId(ch->cobIdTx)) return SDO_E_NOT_CONFIGURED;
  found = ch;
  return SDO_OK;
}

SdoStatus Activate(SdoEngine& engine, SdoChannel& ch) {
  const SdoStatus status = engine.filter.Set(ch.cobIdRx, SDO_FILTER_CLIENT);
  if (status != SDO_OK) return status;
  if (engine.client->active.Insert({ch.cobIdRx, &ch})) return SDO_OK;
  engine.filter.Clear(ch.cobIdRx);
  return SDO_E_LIST;
}

void Load(const SdoEngine& engine, SdoChannel& ch, const Request& request) {
  ch.index = request.index;
  ch.subindex = request.subindex;
  // A download only reads the buffer; one channel record serves both directions.
  ch.buffer = static_cast<std::uint8_t*>(const_cast<void*>(request.buffer));
  ch.size = request.size;
  ch.toggle = 0;
  ch.transferred = 0;
  ch.sequence = 0;
  ch.lastSegmentSize = 0;
  ch.hasCrc = false;
  ch.blockSize = engine.client->blockSize;
}

// The state is set before the request leaves: the answer may arrive while it is being sent.
SdoStatus Start(SdoEngine& engine, SdoChannel& ch, SdoState state, const SdoFrame& request) {
  ch.state = state;
  RestartTimeout(ch);
  if (SdoQueueFrame(engine, request)) return SDO_OK;
  ReleaseTransfer(engine, ch);
  return SDO_E_SEND;
}

// Finds, checks and loads the channel; `start` builds the request and starts.
template <class StartFunction>
SdoStatus Initiate(SdoEngine& engine, const Request& request, StartFunction start) {
  SdoChannel* ch = nullptr;
  SdoStatus status = FindIdleChannel(engine, request, ch);
  if (status == SDO_OK) status = Activate(engine, *ch);
  if (status != SDO_OK) return status;
  Load(engine, *ch, request);
  return start(*ch);
}

}  // namespace

void ReleaseTransfer(SdoEngine& engine, SdoChannel& ch) {
  auto& active = engine.client->active;
  const auto isThis = [&ch](const SdoActiveChannel& entry) { return entry.channel == &ch; };
  if (SdoActiveChannel* entry = std::find_if(active.begin(), active.end(), isThis); entry != active.end()) {
    engine.filter.Clear(entry->cobIdRx);
    active.Remove(entry);
  }
  ch.state = SdoState::Idle;
}

void CompleteTransfer(SdoEngine& engine, SdoChannel& ch) {
  ReleaseTransfer(engine, ch);
  ReportCompletion(engine, ch, true);
}

bool AbortTransfer(SdoEngine& engine, SdoChannel& ch, std::uint8_t abortIndex) {
  const std::uint32_t code = kSdoAbortCodes[abortIndex];
  // Released first: an answer that the transmit hook feeds finds no transfer any more.
  const SdoFrame frame = AbortFrame(ch, code);
  ch.abortCode = code;
  ReleaseTransfer(engine, ch);
  const bool queued = SdoQueueFrame(engine, frame);
  ReportCompletion(engine, ch, false);
  return queued;
}

void QueueOrFail(SdoEngine& engine, SdoChannel& ch, const SdoFrame& frame) {
  if (!SdoQueueFrame(engine, frame)) FailTransfer(engine, ch, kAbortOutOfMemory);
}

// The index in the frame is not looked at: servers are known to send that of an earlier request, or 0.
void OnAbortReceived(SdoEngine& engine, SdoChannel& ch, const SdoFrame& frame) {
  ch.abortCode = AbortCode(frame);
  ReleaseTransfer(engine, ch);
  ReportCompletion(engine, ch, false);
}

void SdoChannelTick(SdoEngine& engine, SdoChannel& ch) {
  constexpr std::uint16_t kTickMs = 20;
  if (IsIdle(ch)) return;
  if (ch.remainingMs > kTickMs) {
    ch.remainingMs = static_cast<std::uint16_t>(ch.remainingMs - kTickMs);
    return;
  }
  ch.remainingMs = 0;
  FailTransfer(engine, ch, kAbortTimeout);
}

SdoStatus SdoAbort(SdoEngine& engine, std::uint8_t channel, std::uint8_t abortIndex) {
  if (abortIndex >= kSdoAbortCodeCount) return SDO_E_ARG;
  if (!CanStart(engine)) return SDO_E_STATE;
  SdoChannel* ch = SdoFindChannel(engine, channel);
  if (ch == nullptr) return SDO_E_NO_CHANNEL;
  if (IsIdle(*ch)) return SDO_E_BUSY;
  return AbortTransfer(engine, *ch, abortIndex) ? SDO_OK : SDO_E_SEND;
}

SdoStatus SdoInitiateUpload(SdoEngine& engine, std::uint8_t channel, std::uint16_t index,
                            std::uint8_t subindex, std::uint32_t capacity, void* buffer) {
  return Initiate(engine, {channel, index, subindex, capacity, buffer}, [&engine](SdoChannel& ch) {
    return Start(engine, ch, SdoState::UploadInitiated, UploadRequest(ch));
  });
}

SdoStatus SdoInitiateBlockUpload(SdoEngine& engine, std::uint8_t channel, std::uint16_t index,
                                 std::uint8_t subindex, std::uint32_t capacity, void* buffer) {
  return Initiate(engine, {channel, index, subindex, capacity, buffer}, [&engine](SdoChannel& ch) {
    const SdoFrame request = BlockUploadRequest(ch, engine.client->switchThreshold);
    return Start(engine, ch, SdoState::BlockUploadInitiated, request);
  });
}

SdoStatus SdoInitiateDownload(SdoEngine& engine, std::uint8_t channel, std::uint16_t index,
                              std::uint8_t subindex, std::uint32_t size, const void* buffer) {
  return Initiate(engine, {channel, index, subindex, size, buffer}, [&engine](SdoChannel& ch) {
    if (ch.size == 0 || ch.size > kExpeditedSize) {
      return Start(engine, ch, SdoState::SegmentedDownload, SegmentedDownloadRequest(ch));
    }
    ch.transferred = ch.size;
    return Start(engine, ch, SdoState::ExpeditedDownload, ExpeditedDownloadRequest(ch));
  });
}

SdoStatus SdoInitiateBlockDownload(SdoEngine& engine, std::uint8_t channel, std::uint16_t index,
                                   std::uint8_t subindex, std::uint32_t size, const void* buffer) {
  return Initiate(engine, {channel, index, subindex, size, buffer}, [&engine](SdoChannel& ch) {
    return Start(engine, ch, SdoState::BlockDownloadInitiated, BlockDownloadRequest(ch));
  });
}

}  // namespace NSdo
