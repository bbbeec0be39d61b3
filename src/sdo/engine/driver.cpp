#include "sdo/engine/driver.h"

#include <new>

namespace NSdo {

namespace {

constexpr int kShutdownPolls = 20000;

SdoStatus OpenDriver(SdoEngine& engine, SdoDriverLink& link) {
  const SdoHooks& hooks = engine.hooks;
  if (hooks.transmit == nullptr || engine.filter.Reset() != SDO_OK) return SDO_E_DRIVER_INIT;
  link.handle = hooks.openDriver != nullptr ? hooks.openDriver(hooks.owner) : &engine.mailbox;
  if (link.handle == nullptr) return SDO_E_DRIVER_OPEN;
  if (hooks.configureDriver == nullptr || hooks.configureDriver(hooks.owner, link.handle)) return SDO_OK;
  if (hooks.closeDriver != nullptr) hooks.closeDriver(hooks.owner, link.handle);
  return SDO_E_DRIVER_CONFIG;
}

}  // namespace

SdoStatus SdoDriverInit(SdoEngine& engine) {
  if (engine.driver) return SDO_OK;
  std::unique_ptr<SdoDriverLink> link(new (std::nothrow) SdoDriverLink);
  if (!link) return SDO_E_NOMEM;
  const SdoStatus status = OpenDriver(engine, *link);
  if (status == SDO_OK) engine.driver = std::move(link);
  return status;
}

void SdoDriverStop(SdoEngine& engine) {
  if (!engine.driver) return;
  engine.driver->closing = true;
  for (int poll = 0; poll < kShutdownPolls && engine.client && !engine.client->transmit.IsEmpty(); ++poll) {
    SdoDrainTransmit(engine);
  }
  if (engine.hooks.closeDriver != nullptr) {
    engine.hooks.closeDriver(engine.hooks.owner, engine.driver->handle);
  }
  engine.driver.reset();
}

void SdoDrainTransmit(SdoEngine& engine) {
  if (!engine.client) return;
  engine.client->transmit.ReadAll([&engine](const SdoFrame& frame) { return SdoTransmit(engine, frame); });
}

void SdoKeepPassed(SdoEngine& engine, const SdoFrame& frame) {
  SdoQueue& queue = engine.client->transmit;
  queue.EndPassing();
  queue.PutBack(frame);
}

bool SdoQueueFrame(SdoEngine& engine, const SdoFrame& frame) {
  if (engine.driver && engine.driver->closing) return true;
  if (SdoCanPass(engine)) {
    SdoPass(engine, frame);
    return true;
  }
  if (!engine.client->transmit.Push(frame)) return false;
  SdoDrainTransmit(engine);
  return true;
}

}  // namespace NSdo
