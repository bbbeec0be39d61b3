#include "sdo/engine/engine.h"

#include "sdo/engine/client.h"
#include "sdo/engine/driver.h"

namespace NSdo {

namespace {

constexpr std::uint8_t kOwnersChannel = 1;

// The owner's transfers may each go to another server: channel 1 is configured anew for every one.
SdoStatus Prepare(SdoEngine& engine, std::uint8_t nodeId, std::uint32_t cobIdRx, std::uint32_t cobIdTx,
                  std::uint16_t timeoutMs) {
  engine.finished = false;
  engine.succeeded = false;
  SdoReleaseChannel(engine, kOwnersChannel);
  const SdoStatus status = SdoConfigureChannel(engine, kOwnersChannel, cobIdRx, cobIdTx, timeoutMs, nodeId);
  engine.nodeState = kNodeOperational;
  return status;
}

}  // namespace

SdoEngine::SdoEngine() = default;

SdoEngine::~SdoEngine() {
  client.reset();
  SdoDriverStop(*this);
}

int SdoOpen(SdoEngine& engine, std::uint8_t blockSize) {
  SdoClose(engine);
  if (SdoDriverInit(engine) != SDO_OK) return 1;
  if (SdoClientInit(engine, blockSize, kDefaultSwitchThreshold) != SDO_OK) return 1;
  engine.ready = SdoCreateChannel(engine, kOwnersChannel) == SDO_OK;
  if (!engine.ready) SdoClientFree(engine);  // so that the next attempt finds a clean engine
  return 1;
}

int SdoClose(SdoEngine& engine) {
  if (!engine.ready) return 0;
  SdoReleaseChannel(engine, kOwnersChannel);
  SdoDeleteChannel(engine, kOwnersChannel);
  SdoClientFree(engine);
  SdoDriverStop(engine);
  engine.ready = false;
  return 1;
}

int SdoWrite(SdoEngine& engine, std::uint8_t nodeId, std::uint16_t index, std::uint8_t subindex,
             const void* buffer, std::uint32_t size, std::uint32_t cobIdRx, std::uint32_t cobIdTx,
             std::uint16_t timeoutMs, std::uint16_t block) {
  if (!engine.ready) return 0;
  const auto initiate = block != 0 ? &SdoInitiateBlockDownload : &SdoInitiateDownload;
  SdoStatus status = Prepare(engine, nodeId, cobIdRx, cobIdTx, timeoutMs);
  if (status == SDO_OK) status = initiate(engine, kOwnersChannel, index, subindex, size, buffer);
  engine.startStatus = status;
  return 1;
}

int SdoRead(SdoEngine& engine, std::uint8_t nodeId, std::uint16_t index, std::uint8_t subindex, void* buffer,
            std::uint32_t capacity, std::uint32_t cobIdRx, std::uint32_t cobIdTx, std::uint16_t timeoutMs,
            std::uint16_t block) {
  if (!engine.ready) return 0;
  const auto initiate = block != 0 ? &SdoInitiateBlockUpload : &SdoInitiateUpload;
  SdoStatus status = Prepare(engine, nodeId, cobIdRx, cobIdTx, timeoutMs);
  if (status == SDO_OK) status = initiate(engine, kOwnersChannel, index, subindex, capacity, buffer);
  engine.startStatus = status;
  return 1;
}

void SdoTick(SdoEngine& engine) {
  if (!engine.client) return;
  // By position: the completion hook may create channels, and the list may move.
  auto& channels = engine.client->channels;
  for (std::uint32_t i = 0; i < channels.Count(); ++i) SdoChannelTick(engine, *channels.begin()[i]);
}

SdoResult SdoResultOf(const SdoEngine& engine) {
  const SdoChannel* ch = SdoFindChannel(engine, kOwnersChannel);
  if (ch == nullptr) return {};
  return {ch->transferred, ch->abortCode, ch->state};
}

}  // namespace NSdo
