#include "editors/first_sdo_frame.h"

#include <vector>

#include "sdo/engine/engine.h"

namespace NEditors {
namespace {

constexpr std::uint8_t kBlockSize = 10;  // of uploads; what a new generator block is set to
constexpr std::uint32_t kUploadCapacity = 0x100000;

struct Recorder {
  std::optional<NSdk::CanFrame> first;

  static NSdo::SdoSent Transmit(void* owner, const NSdo::SdoFrame& frame) {
    auto& first = static_cast<Recorder*>(owner)->first;
    if (!first) first = frame;
    return NSdo::SdoSent::Accepted;
  }
};

}  // namespace

// The engine is asked: it alone knows what a transfer begins with.
std::optional<NSdk::CanFrame> FirstSdoFrame(const NCanopen::SdoRecord& record,
                                            std::span<const std::uint8_t> data) {
  Recorder recorder;
  NSdo::SdoEngine engine;
  engine.hooks = {.owner = &recorder, .transmit = &Recorder::Transmit};
  NSdo::SdoOpen(engine, kBlockSize);
  const auto node = static_cast<std::uint8_t>(record.nodeId <= 0xFF ? record.nodeId : 0);
  const auto index = static_cast<std::uint16_t>(record.index);
  const auto subIndex = static_cast<std::uint8_t>(record.subIndex);
  const std::uint16_t block = record.blockTransfer != 0 ? 1 : 0;
  std::vector<std::uint8_t> buffer(data.begin(), data.end());
  buffer.push_back(0);  // never without an address
  if (record.upload != 0) {
    NSdo::SdoRead(engine, node, index, subIndex, buffer.data(), kUploadCapacity, record.cobIdRx,
                  record.cobIdTx, 0, block);
  } else {
    NSdo::SdoWrite(engine, node, index, subIndex, buffer.data(), static_cast<std::uint32_t>(data.size()),
                   record.cobIdRx, record.cobIdTx, 0, block);
  }
  NSdo::SdoClose(engine);  // no answer reaches it, so nothing is written into the buffer
  return recorder.first;
}

}  // namespace NEditors
