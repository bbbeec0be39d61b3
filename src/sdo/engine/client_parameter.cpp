#include "sdo/engine/client_parameter.h"

#include <algorithm>

#include "sdo/engine/abort_codes.h"
#include "sdo/engine/client.h"
#include "sdo/engine/frames.h"

namespace NSdo {

namespace {

enum Subindex : std::uint8_t {
  kHighestSubindex = 0,
  kCobIdClientToServer = 1,
  kCobIdServerToClient = 2,
  kServerNode = 3,
};

SdoChannel* ChannelOf(SdoEngine& engine, std::uint8_t indexLow) {
  constexpr std::uint8_t kFirst = kClientParameterIndex & 0xFF;
  return indexLow < kFirst ? nullptr
                           : SdoFindChannel(engine, static_cast<std::uint8_t>(indexLow - kFirst + 1));
}

// Gives a little-endian number of `bytes` bytes, if there is room.
std::uint8_t Give(std::uint32_t value, std::uint32_t bytes, std::uint32_t& size, std::uint8_t* data) {
  if (size < bytes) return kAbortLength;
  for (std::uint32_t i = 0; i < bytes; ++i) data[i] = static_cast<std::uint8_t>(value >> (8 * i));
  size = bytes;
  return kAbortNone;
}

std::uint8_t Read(SdoEngine& engine, std::uint8_t indexLow, std::uint8_t subindex, std::uint32_t& size,
                  std::uint8_t* data) {
  if (subindex == kHighestSubindex) return Give(kServerNode, 1, size, data);
  if (subindex > kServerNode) return kAbortNoSubindex;
  const SdoChannel* ch = ChannelOf(engine, indexLow);
  if (ch == nullptr) return kAbortNoObject;
  if (subindex == kServerNode) return Give(ch->serverNode, 1, size, data);
  return Give(subindex == kCobIdClientToServer ? ch->cobIdTx : ch->cobIdRx, 4, size, data);
}

std::uint8_t WriteCobId(SdoEngine& engine, SdoChannel& ch, std::uint32_t& mine, std::uint32_t other,
                        std::uint32_t value) {
  const bool wasValid = IsValidCobId(mine);
  const bool becomesValid = IsValidCobId(value);
  if (value == mine || (!wasValid && !becomesValid)) return kAbortNone;
  if (wasValid && becomesValid) return kAbortLocalControl;  // it has to be made not valid first
  if (becomesValid) {
    if ((value & kCobIdExtended) != 0) return kAbortInvalidValue;
    if (value == 0) return kAbortValueTooLow;
    if (IsCobIdUsed(engine, value)) return kAbortLocalControl;
    if (IsValidCobId(other)) ch.timeoutMs = kDefaultTimeoutMs;
  }
  mine = value;
  return kAbortNone;
}

std::uint8_t WriteServerNode(SdoChannel& ch, std::uint8_t node) {
  if (node < 1 || node > 127) return kAbortInvalidValue;
  ch.serverNode = node;
  return kAbortNone;
}

std::uint8_t Write(SdoEngine& engine, std::uint8_t indexLow, std::uint8_t subindex, std::uint32_t& size,
                   const std::uint8_t* data) {
  if (subindex == kHighestSubindex) return kAbortReadOnly;
  if (subindex > kServerNode) return kAbortNoSubindex;
  SdoChannel* ch = ChannelOf(engine, indexLow);
  if (ch == nullptr) return kAbortNoObject;
  if (size != (subindex == kServerNode ? 1u : 4u)) return kAbortLength;
  if (subindex == kServerNode) return WriteServerNode(*ch, data[0]);
  if (subindex == kCobIdClientToServer) {
    return WriteCobId(engine, *ch, ch->cobIdTx, ch->cobIdRx, ReadU32(data));
  }
  return WriteCobId(engine, *ch, ch->cobIdRx, ch->cobIdTx, ReadU32(data));
}

}  // namespace

SdoOdEntry ClientParameterEntry(std::uint8_t channel) {
  return {&Read, &Write, static_cast<std::uint16_t>(kClientParameterIndex + channel - 1),
          kOdReadable | kOdWritable};
}

bool IsCobIdUsed(const SdoEngine& engine, std::uint32_t cobId) {
  const auto& channels = engine.client->channels;
  return std::any_of(channels.begin(), channels.end(),
                     [cobId](const SdoChannel* ch) { return ch->cobIdRx == cobId || ch->cobIdTx == cobId; });
}

}  // namespace NSdo
