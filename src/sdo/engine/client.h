#pragma once
// The client layer: channels, their configuration, and transfers on them. Owners that run one transfer at a
// time use engine.h instead.

#include "sdo/engine/engine.h"
#include "sdo/engine/list.h"
#include "sdo/engine/queue.h"

namespace NSdo {

inline constexpr std::uint8_t kDefaultBlockSize = 8;
inline constexpr std::uint8_t kDefaultSwitchThreshold = 28;

/// A channel with a transfer under way. The COB-ID is kept beside it: the channel's own may be changed
/// through the object dictionary meanwhile, and the list must stay sorted.
struct SdoActiveChannel {
  std::uint32_t cobIdRx;
  SdoChannel* channel;
};

struct SdoClientLayer {
  static constexpr std::uint32_t NumberOf(SdoChannel* const& channel) { return channel->channel; }
  static constexpr std::uint32_t CobIdOf(const SdoActiveChannel& active) { return active.cobIdRx; }

  SdoClientLayer() = default;
  SdoClientLayer(const SdoClientLayer&) = delete;
  SdoClientLayer& operator=(const SdoClientLayer&) = delete;
  ~SdoClientLayer();

  SdoQueue receive;
  SdoQueue transmit;
  SdoList<SdoChannel*, &NumberOf> channels;  ///< by channel number; owned
  SdoList<SdoActiveChannel, &CobIdOf> active;
  std::uint8_t blockSize = kDefaultBlockSize;
  std::uint8_t switchThreshold = kDefaultSwitchThreshold;
};

/// `blockSize` 0 = 8, `switchThreshold` 0 = 28. SDO_E_EXISTS, SDO_E_NOMEM.
SdoStatus SdoClientInit(SdoEngine& engine, std::uint8_t blockSize, std::uint8_t switchThreshold);
/// Frees every channel with its dictionary entry, and the layer. SDO_E_NO_CLIENT.
SdoStatus SdoClientFree(SdoEngine& engine);

/// `channel` 1..128. Makes its client parameter entry (1280h + channel - 1) too.
/// SDO_E_ARG, SDO_E_EXISTS, SDO_E_NOMEM, SDO_E_LIST.
SdoStatus SdoCreateChannel(SdoEngine& engine, std::uint8_t channel);
/// Drops a transfer on it. SDO_E_ARG, SDO_E_NO_CHANNEL.
SdoStatus SdoDeleteChannel(SdoEngine& engine, std::uint8_t channel);

/// `timeoutMs` 0 = 2000. SDO_E_NO_CHANNEL; SDO_E_COBID_IN_USE if any channel has one of the COB-IDs;
/// SDO_E_CONFIGURED unless the channel is released; SDO_E_ARG for equal COB-IDs or a server node not 1..127.
SdoStatus SdoConfigureChannel(SdoEngine& engine, std::uint8_t channel, std::uint32_t cobIdRx,
                              std::uint32_t cobIdTx, std::uint16_t timeoutMs, std::uint8_t serverNode);
/// Drops a transfer on it and makes both COB-IDs not valid. SDO_E_NO_CHANNEL.
SdoStatus SdoReleaseChannel(SdoEngine& engine, std::uint8_t channel);

/// Ends the transfer on the channel with an abort frame; the completion hook hears of the failure.
/// SDO_E_ARG, SDO_E_STATE, SDO_E_NO_CHANNEL, SDO_E_BUSY if idle, SDO_E_SEND if the frame was not queued (the
/// transfer has ended all the same).
SdoStatus SdoAbort(SdoEngine& engine, std::uint8_t channel, std::uint8_t abortIndex);
/// SDO_E_NO_CHANNEL; SDO_E_ARG unless the channel is idle.
SdoStatus SdoGetAbortCode(const SdoEngine& engine, std::uint8_t channel, std::uint32_t& code);

/// First channel of that server. SDO_E_NOT_FOUND.
SdoStatus SdoFindChannelByNode(const SdoEngine& engine, std::uint8_t node, std::uint8_t& channel);
/// SDO_E_NOT_FOUND.
SdoStatus SdoGetChannelNode(const SdoEngine& engine, std::uint8_t channel, std::uint8_t& node);
/// SDO_OK or SDO_E_NO_CHANNEL.
SdoStatus SdoChannelExists(const SdoEngine& engine, std::uint8_t channel);
/// Null if there is none. Valid until the channel is deleted.
SdoChannel* SdoFindChannel(const SdoEngine& engine, std::uint8_t channel);

/// Start a transfer. `buffer` must stay until it has ended; it may be null only if `size` is 0. Checked in
/// this order: SDO_E_STATE, SDO_E_ARG, SDO_E_NO_CHANNEL, SDO_E_BUSY, SDO_E_NOT_CONFIGURED,
/// SDO_E_COBID_IN_USE (receive filter), SDO_E_LIST, SDO_E_SEND. A refused start leaves the channel idle.
SdoStatus SdoInitiateUpload(SdoEngine& engine, std::uint8_t channel, std::uint16_t index,
                            std::uint8_t subindex, std::uint32_t capacity, void* buffer);
SdoStatus SdoInitiateBlockUpload(SdoEngine& engine, std::uint8_t channel, std::uint16_t index,
                                 std::uint8_t subindex, std::uint32_t capacity, void* buffer);
SdoStatus SdoInitiateDownload(SdoEngine& engine, std::uint8_t channel, std::uint16_t index,
                              std::uint8_t subindex, std::uint32_t size, const void* buffer);
SdoStatus SdoInitiateBlockDownload(SdoEngine& engine, std::uint8_t channel, std::uint16_t index,
                                   std::uint8_t subindex, std::uint32_t size, const void* buffer);

/// Handles every frame in the receive queue.
void SdoProcessReceived(SdoEngine& engine);
/// 20 ms have passed for this channel.
void SdoChannelTick(SdoEngine& engine, SdoChannel& channel);

}  // namespace NSdo
