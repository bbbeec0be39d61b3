// From a received frame to the event of the transfer that it belongs to.

#include <array>

#include "sdo/engine/driver.h"
#include "sdo/engine/transfer.h"

namespace NSdo {

namespace {

using Handler = void (*)(SdoEngine& engine, SdoChannel& ch, const SdoFrame& frame);

void Drop(SdoEngine&, SdoChannel&, const SdoFrame&) {}  // no server sends this

// By byte 0: the server's command in bits 7..5 and, where the command has one, the sub-command in bits 1..0.
constexpr std::array<Handler, 256> MakeHandlers() {
  std::array<Handler, CommandKeyOf(8, 0)> ofKeys{};
  ofKeys.fill(&Drop);
  const auto whole = [&ofKeys](unsigned command, Handler handler) {
    for (unsigned sub = 0; sub < 4; ++sub) ofKeys[CommandKeyOf(command, sub)] = handler;
  };
  whole(kServerUploadSegment, &OnUploadSegment);
  whole(kServerDownloadSegment, &OnDownloadResponse);
  whole(kServerUploadInitiate, &OnUploadInitiated);
  whole(kServerDownloadInitiate, &OnDownloadResponse);
  whole(kServerAbort, &OnAbortReceived);
  ofKeys[CommandKeyOf(kServerBlockDownload, 0)] = &OnBlockDownloadInitiated;
  ofKeys[CommandKeyOf(kServerBlockDownload, 1)] = &OnBlockDownloadEnd;
  ofKeys[CommandKeyOf(kServerBlockDownload, 2)] = &OnBlockDownloadAck;
  ofKeys[CommandKeyOf(kServerBlockUpload, 0)] = &OnBlockUploadInitiated;
  ofKeys[CommandKeyOf(kServerBlockUpload, 1)] = &OnBlockUploadEnd;
  ofKeys[CommandKeyOf(kServerBlockUpload, 2)] = &OnBlockUploadInitiated;
  std::array<Handler, 256> handlers{};
  for (unsigned byte = 0; byte < handlers.size(); ++byte) {
    handlers[byte] = ofKeys[CommandKeyOf(byte >> 5, byte & 3)];
  }
  return handlers;
}

constexpr std::array<Handler, 256> kHandlers = MakeHandlers();

inline void Deliver(SdoEngine& engine, const SdoFrame& frame, std::uint32_t cobId) {
  const SdoActiveChannel* active = engine.client->active.Find(cobId);
  if (active == nullptr) return;
  SdoChannel& ch = *active->channel;
  // Within a sub-block byte 0 is a sequence number, not a command.
  if (ch.state == SdoState::BlockUploadReceiving) return OnBlockUploadSegment(engine, ch, frame);
  kHandlers[frame.data[0]](engine, ch, frame);
}

bool IsWanted(const SdoEngine& engine, std::uint32_t cobId) {
  return (engine.filter.Flags(cobId) & SDO_FILTER_CLIENT) != 0;
}

bool CanRead(const SdoEngine& engine) { return engine.client && engine.driver && !engine.driver->closing; }

// One frame from the owner's driver into the receive queue. What no channel waits for, or finds no room, is
// dropped. false: there was none.
bool ReadDriver(SdoEngine& engine) {
  const SdoHooks& hooks = engine.hooks;
  SdoFrame frame;
  if (!CanRead(engine) || hooks.readFrame == nullptr) return false;
  if (!hooks.readFrame(hooks.owner, engine.driver->handle, frame)) return false;
  if (IsWanted(engine, CobIdOf(frame))) engine.client->receive.Push(frame);
  return true;
}

// Each frame is handled in its slot. A hook that feeds the next one meanwhile only queues it: the slot is
// taken, and this loop finds the frame afterwards.
[[gnu::noinline]] void ProcessQueue(SdoEngine& engine) {
  engine.client->receive.ReadAll([&engine](const SdoFrame& frame) {
    Deliver(engine, frame, CobIdOf(frame));
    return true;
  });
}

// For a frame that comes while another one is handled.
[[gnu::noinline]] void FeedBehind(SdoEngine& engine, const SdoFrame& frame) {
  engine.client->receive.Push(frame);
  ProcessQueue(engine);
}

}  // namespace

int SdoFeed(SdoEngine& engine, const SdoFrame& frame) {
  if (!engine.ready) return 0;
  engine.mailbox = frame;
  const std::uint32_t cobId = CobIdOf(frame);
  if (!CanRead(engine) || !IsWanted(engine, cobId)) return 1;
  SdoQueue& queue = engine.client->receive;
  if (!queue.IsIdle()) {
    FeedBehind(engine, frame);
    return 1;
  }
  queue.BeginPassing();
  Deliver(engine, frame, cobId);
  queue.EndPassing();
  if (!queue.IsEmpty()) ProcessQueue(engine);
  return 1;
}

int SdoPoll(SdoEngine& engine) {
  if (!engine.ready) return 0;
  while (ReadDriver(engine)) SdoProcessReceived(engine);
  return 1;
}

void SdoProcessReceived(SdoEngine& engine) {
  if (engine.client) ProcessQueue(engine);
}

}  // namespace NSdo
