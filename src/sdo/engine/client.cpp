#include "sdo/engine/client.h"

#include <new>

#include "sdo/engine/client_parameter.h"
#include "sdo/engine/transfer.h"

namespace NSdo {

namespace {

// Undoes what the channel has in the filter, the active list and the dictionary.
void Detach(SdoEngine& engine, SdoChannel& ch) {
  ReleaseTransfer(engine, ch);
  SdoOdRemove(engine, ClientParameterEntry(ch.channel).index, 0);
}

}  // namespace

SdoClientLayer::~SdoClientLayer() {
  for (SdoChannel* ch : channels) delete ch;
}

SdoStatus SdoClientInit(SdoEngine& engine, std::uint8_t blockSize, std::uint8_t switchThreshold) {
  if (engine.client) return SDO_E_EXISTS;
  std::unique_ptr<SdoClientLayer> layer(new (std::nothrow) SdoClientLayer);
  if (!layer || !layer->channels.Create() || !layer->active.Create()) return SDO_E_NOMEM;
  if (blockSize != 0) layer->blockSize = blockSize;
  if (switchThreshold != 0) layer->switchThreshold = switchThreshold;
  engine.client = std::move(layer);
  return SDO_OK;
}

SdoStatus SdoClientFree(SdoEngine& engine) {
  if (!engine.client) return SDO_E_NO_CLIENT;
  for (SdoChannel* ch : engine.client->channels) Detach(engine, *ch);
  engine.client.reset();
  return SDO_OK;
}

SdoStatus SdoCreateChannel(SdoEngine& engine, std::uint8_t channel) {
  if (!engine.client || channel == 0 || channel > kMaxChannel) return SDO_E_ARG;
  if (SdoFindChannel(engine, channel) != nullptr) return SDO_E_EXISTS;
  std::unique_ptr<SdoChannel> ch(new (std::nothrow) SdoChannel);
  if (!ch || SdoOdCreate(engine) != SDO_OK) return SDO_E_NOMEM;
  ch->channel = channel;
  const SdoOdEntry entry = ClientParameterEntry(channel);
  if (SdoOdRegister(engine, entry) == nullptr) return SDO_E_NOMEM;
  if (!engine.client->channels.Insert(ch.get())) {
    SdoOdRemove(engine, entry.index, 0);
    return SDO_E_LIST;
  }
  static_cast<void>(ch.release());  // the list owns it now
  return SDO_OK;
}

SdoStatus SdoDeleteChannel(SdoEngine& engine, std::uint8_t channel) {
  if (!engine.client || channel == 0) return SDO_E_ARG;
  auto& channels = engine.client->channels;
  SdoChannel** place = channels.Find(channel);
  if (place == nullptr) return SDO_E_NO_CHANNEL;
  const std::unique_ptr<SdoChannel> ch(*place);
  Detach(engine, *ch);
  channels.Remove(place);
  return SDO_OK;
}

SdoStatus SdoConfigureChannel(SdoEngine& engine, std::uint8_t channel, std::uint32_t cobIdRx,
                              std::uint32_t cobIdTx, std::uint16_t timeoutMs, std::uint8_t serverNode) {
  SdoChannel* ch = SdoFindChannel(engine, channel);
  if (ch == nullptr) return SDO_E_NO_CHANNEL;
  if (IsCobIdUsed(engine, cobIdRx) || IsCobIdUsed(engine, cobIdTx)) return SDO_E_COBID_IN_USE;
  if (IsValidCobId(ch->cobIdRx) || IsValidCobId(ch->cobIdTx)) return SDO_E_CONFIGURED;
  if (cobIdRx == cobIdTx || serverNode < 1 || serverNode > 127) return SDO_E_ARG;
  ReleaseTransfer(engine, *ch);  // one may still run if the COB-IDs went through the dictionary
  ch->cobIdRx = cobIdRx;
  ch->cobIdTx = cobIdTx;
  ch->serverNode = serverNode;
  ch->blockSize = engine.client->blockSize;
  ch->timeoutMs = timeoutMs != 0 ? timeoutMs : kDefaultTimeoutMs;
  return SDO_OK;
}

SdoStatus SdoReleaseChannel(SdoEngine& engine, std::uint8_t channel) {
  SdoChannel* ch = SdoFindChannel(engine, channel);
  if (ch == nullptr) return SDO_E_NO_CHANNEL;
  ReleaseTransfer(engine, *ch);
  ch->cobIdRx |= kCobIdNotValid;
  ch->cobIdTx |= kCobIdNotValid;
  ch->serverNode = 0;
  return SDO_OK;
}

SdoStatus SdoGetAbortCode(const SdoEngine& engine, std::uint8_t channel, std::uint32_t& code) {
  const SdoChannel* ch = SdoFindChannel(engine, channel);
  if (ch == nullptr) return SDO_E_NO_CHANNEL;
  if (ch->state > SdoState::Idle) return SDO_E_ARG;
  code = ch->abortCode;
  return SDO_OK;
}

SdoStatus SdoFindChannelByNode(const SdoEngine& engine, std::uint8_t node, std::uint8_t& channel) {
  if (!engine.client) return SDO_E_NOT_FOUND;
  for (const SdoChannel* ch : engine.client->channels) {
    if (ch->serverNode != node) continue;
    channel = ch->channel;
    return SDO_OK;
  }
  return SDO_E_NOT_FOUND;
}

SdoStatus SdoGetChannelNode(const SdoEngine& engine, std::uint8_t channel, std::uint8_t& node) {
  const SdoChannel* ch = SdoFindChannel(engine, channel);
  if (ch == nullptr) return SDO_E_NOT_FOUND;
  node = ch->serverNode;
  return SDO_OK;
}

SdoStatus SdoChannelExists(const SdoEngine& engine, std::uint8_t channel) {
  return SdoFindChannel(engine, channel) != nullptr ? SDO_OK : SDO_E_NO_CHANNEL;
}

SdoChannel* SdoFindChannel(const SdoEngine& engine, std::uint8_t channel) {
  if (!engine.client) return nullptr;
  SdoChannel** place = engine.client->channels.Find(channel);
  return place != nullptr ? *place : nullptr;
}

}  // namespace NSdo
