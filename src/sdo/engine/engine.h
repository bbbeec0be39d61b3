#pragma once
// CANopen SDO client (CiA 301, 7.2.4): expedited, segmented and block transfer in both directions.
//
// The engine has no thread and no clock. Its owner hands it received frames (SdoFeed), calls SdoTick every
// 20 ms, and puts the frames that come out of the transmit hook on the bus, all on one thread:
//
//   SdoEngine engine;
//   engine.hooks = {.owner = this, .transmit = &PutOnTheBus};
//   SdoOpen(engine, 127);
//   SdoRead(engine, 5, 0x1018, 1, buffer, sizeof buffer, 0x585, 0x605, 2000, 0);
//   ... SdoFeed and SdoTick until engine.finished; then engine.succeeded and SdoResultOf(engine) ...
//   SdoClose(engine);
//
// These functions run one transfer at a time on channel 1; client.h has the layer below, for several.
// Nothing is allocated between the start of a transfer and its end, and nothing throws.

#include <algorithm>
#include <cstdint>
#include <memory>

#include "sdk/can_frame.h"
#include "sdo/engine/channel.h"
#include "sdo/engine/object_dictionary.h"
#include "sdo/engine/receive_filter.h"
#include "sdo/engine/status.h"

namespace NSdo {

using SdoFrame = NSdk::CanFrame;
struct SdoClientLayer;
struct SdoDriverLink;

enum class SdoSent { Accepted, Keep };

/// The owner's functions; all but `transmit` may be null. `owner` is handed to each. They may feed frames,
/// and `completed` may start the next transfer; none may close the engine, free the client layer or delete a
/// channel.
struct SdoHooks {
  void* owner = nullptr;
  /// Puts a frame on the bus. A frame to Keep stays at the head of the transmit queue until the next frame is
  /// queued or SdoDrainTransmit is called.
  SdoSent (*transmit)(void* owner, const SdoFrame& frame) = nullptr;
  /// A transfer has ended; `success` false: abort or time-out. The channel is idle again.
  void (*completed)(void* owner, std::uint8_t channel, std::uint16_t index, std::uint8_t subindex,
                    void* buffer, bool success) = nullptr;
  /// For owners with a driver of their own: a handle (null = failed), its configuration (false = refused),
  /// its end, and one received frame (false = none), which SdoPoll asks for.
  void* (*openDriver)(void* owner) = nullptr;
  bool (*configureDriver)(void* owner, void* handle) = nullptr;
  void (*closeDriver)(void* owner, void* handle) = nullptr;
  bool (*readFrame)(void* owner, void* handle, SdoFrame& frame) = nullptr;
};

/// NMT states that the engine looks at (CiA 301, 7.3.2.2).
inline constexpr std::uint8_t kNodeStopped = 4;
inline constexpr std::uint8_t kNodeOperational = 5;
inline constexpr std::uint8_t kNodePreOperational = 127;

/// One engine. The owner sets `hooks` before SdoOpen and reads the flags; the rest is the engine's. It frees
/// everything when destroyed and does not move.
struct SdoEngine {
  SdoEngine();
  SdoEngine(const SdoEngine&) = delete;
  SdoEngine& operator=(const SdoEngine&) = delete;
  ~SdoEngine();

  SdoHooks hooks;
  /// Local node state. Transfers start in operational and pre-operational only; in stopped, frames to send
  /// are dropped.
  std::uint8_t nodeState = kNodePreOperational;

  bool ready = false;              ///< between SdoOpen and SdoClose
  bool finished = false;           ///< the last transfer has ended
  bool succeeded = false;          ///< ... and well
  SdoStatus startStatus = SDO_OK;  ///< of the last SdoWrite or SdoRead; a refused start never finishes

  SdoFrame mailbox;  ///< the frame that SdoFeed hands to the driver link
  SdoReceiveFilter filter;
  std::unique_ptr<SdoDriverLink> driver;
  std::unique_ptr<SdoClientLayer> client;
  std::unique_ptr<SdoObjectDictionary> dictionary;
};

/// Gets a fresh channel 1 and fresh queues; an open engine is closed first. `blockSize` 1..127 segments per
/// sub-block, 0 = 8. Always returns 1; `ready` tells whether it worked.
int SdoOpen(SdoEngine& engine, std::uint8_t blockSize);

/// Drops a transfer that is under way (no abort frame, no completion) and frees channel, queues and driver
/// link. Returns 1, or 0 if it was not ready.
int SdoClose(SdoEngine& engine);

/// Starts a download of `size` bytes at `buffer`, which must stay until the transfer has ended, with
/// `cobIdRx` from and `cobIdTx` to the server (bit 29 = 29-bit identifier). `timeoutMs` per answer, 0 = 2000.
/// `block` other than 0 asks for block transfer. Returns 0 if not ready, else 1, also when the start was
/// refused: `startStatus` says why, and such a transfer never sets `finished`. A transfer that is still under
/// way is dropped.
int SdoWrite(SdoEngine& engine, std::uint8_t nodeId, std::uint16_t index, std::uint8_t subindex,
             const void* buffer, std::uint32_t size, std::uint32_t cobIdRx, std::uint32_t cobIdTx,
             std::uint16_t timeoutMs, std::uint16_t block);

/// Starts an upload into `buffer`, which holds `capacity` bytes. As SdoWrite otherwise.
int SdoRead(SdoEngine& engine, std::uint8_t nodeId, std::uint16_t index, std::uint8_t subindex, void* buffer,
            std::uint32_t capacity, std::uint32_t cobIdRx, std::uint32_t cobIdTx, std::uint16_t timeoutMs,
            std::uint16_t block);

/// Hands over a received frame; frames of others are ignored. Returns 0 if not ready, else 1.
int SdoFeed(SdoEngine& engine, const SdoFrame& frame);

/// For owners with a readFrame hook: reads until it gives no more. Returns 0 if not ready, else 1.
int SdoPoll(SdoEngine& engine);

/// Call every 20 ms: counts the time-outs.
void SdoTick(SdoEngine& engine);

/// Offers kept frames to the transmit hook again.
void SdoDrainTransmit(SdoEngine& engine);

/// What channel 1 says of the last transfer, until SdoClose.
struct SdoResult {
  std::uint32_t transferred = 0;  ///< bytes; of an upload that succeeded, the bytes in the buffer
  std::uint32_t abortCode = 0;    ///< last one sent or received on the channel, 0 = none
  SdoState state = SdoState::Idle;
};
SdoResult SdoResultOf(const SdoEngine& engine);

/// Milliseconds for `timeoutMs`: what does not fit 16 bits becomes the longest time-out, 65535.
constexpr std::uint16_t SdoTimeoutOf(std::uint32_t milliseconds) {
  return static_cast<std::uint16_t>(std::min<std::uint32_t>(milliseconds, 0xFFFF));
}

}  // namespace NSdo
