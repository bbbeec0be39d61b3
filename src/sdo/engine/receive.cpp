// From a received frame to the event of the transfer that it belongs to.

#include <array>

#include "sdo/engine/driver.h"
#include "sdo/engine/transfer.h"

namespace NSdo {

namespace {

using Handler = void (*)(SdoEngine& engine, SdoChannel& ch, const SdoFrame& frame);

// By CommandKey: the server's command in bits 7..5 of byte 0 and, where the command has one, the sub-command
// in bits 1..0. Null: no server sends this, the frame is dropped.
constexpr std::array<Handler, 32> MakeHandlers() {
  std::array<Handler, 32> handlers{};
  const auto whole = [&handlers](unsigned command, Handler handler) {
    for (unsigned sub = 0; sub < 4; ++sub) handlers[CommandKeyOf(command, sub)] = handler;
  };
  whole(kServerUploadSegment, &OnUploadSegment);
  whole(kServerDownloadSegment, &OnDownloadResponse);
  whole(kServerUploadInitiate, &OnUploadInitiated);
  whole(kServerDownloadInitiate, &OnDownloadResponse);
  whole(kServerAbort, &OnAbortReceived);
  handlers[CommandKeyOf(kServerBlockDownload, 0)] = &OnBlockDownloadInitiated;
  handlers[CommandKeyOf(kServerBlockDownload, 1)] = &OnBlockDownloadEnd;
  handlers[CommandKeyOf(kServerBlockDownload, 2)] = &OnBlockDownloadAck;
  handlers[CommandKeyOf(kServerBlockUpload, 0)] = &OnBlockUploadInitiated;
  handlers[CommandKeyOf(kServerBlockUpload, 1)] = &OnBlockUploadEnd;
  handlers[CommandKeyOf(kServerBlockUpload, 2)] = &OnBlockUploadInitiated;
  return handlers;
}

constexpr std::array<Handler, 32> kHandlers = MakeHandlers();

void Deliver(SdoEngine& engine, const SdoFrame& frame) {
  const SdoActiveChannel* active = engine.client->active.Find(CobIdOf(frame));
  if (active == nullptr) return;
  SdoChannel& ch = *active->channel;
  // Within a sub-block byte 0 is a sequence number, not a command.
  const Handler handler =
      ch.state == SdoState::BlockUploadReceiving ? &OnBlockUploadSegment : kHandlers[CommandKey(frame)];
  if (handler != nullptr) handler(engine, ch, frame);
}

// What no channel waits for, or finds no room, is dropped.
inline void Accept(SdoEngine& engine, const SdoFrame& frame) {
  if ((engine.filter.Flags(CobIdOf(frame)) & SDO_FILTER_CLIENT) != 0) engine.client->receive.Push(frame);
}

bool CanRead(const SdoEngine& engine) { return engine.client && engine.driver && !engine.driver->closing; }

// One frame from the owner's driver into the receive queue. false: there was none.
bool ReadDriver(SdoEngine& engine) {
  const SdoHooks& hooks = engine.hooks;
  SdoFrame frame;
  if (!CanRead(engine) || hooks.readFrame == nullptr) return false;
  if (!hooks.readFrame(hooks.owner, engine.driver->handle, frame)) return false;
  Accept(engine, frame);
  return true;
}

// The frame is handled in its slot. A hook that feeds the next one meanwhile only queues it: the slot is
// taken, and this loop finds the frame afterwards.
inline void ProcessQueue(SdoEngine& engine, SdoQueue& queue) {
  while (const SdoFrame* frame = queue.TakeRead()) {
    Deliver(engine, *frame);
    queue.CommitRead();
  }
}

}  // namespace

int SdoFeed(SdoEngine& engine, const SdoFrame& frame) {
  if (!engine.ready) return 0;
  engine.mailbox = frame;
  if (!CanRead(engine)) return 1;
  Accept(engine, engine.mailbox);
  ProcessQueue(engine, engine.client->receive);
  return 1;
}

int SdoPoll(SdoEngine& engine) {
  if (!engine.ready) return 0;
  while (ReadDriver(engine)) SdoProcessReceived(engine);
  return 1;
}

void SdoProcessReceived(SdoEngine& engine) {
  if (engine.client) ProcessQueue(engine, engine.client->receive);
}

}  // namespace NSdo
