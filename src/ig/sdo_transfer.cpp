#include "ig/sdo_transfer.h"

#include "ig/item_sender.h"

namespace NIg {
namespace {

constexpr std::size_t kUploadCapacity = 0x100000;

}  // namespace

SdoTransfer::SdoTransfer() { mEngine.hooks = {.owner = this, .transmit = &Transmit}; }

void SdoTransfer::SetOutput(NSdk::ICANOutput* output) {
  Close();
  mOutput = output;
}

NSdo::SdoSent SdoTransfer::Transmit(void* owner, const NSdo::SdoFrame& frame) {
  if (NSdk::ICANOutput* output = static_cast<SdoTransfer*>(owner)->mOutput) output->Transmit(&frame);
  return NSdo::SdoSent::Accepted;
}

void SdoTransfer::Close() {
  NSdo::SdoClose(mEngine);
  mBuffer = {};
}

void SdoTransfer::End() {
  Close();
  mRunning = false;
}

// A download's buffer is one byte longer than its data, so that it is never empty.
bool SdoTransfer::FillBuffer(NCanopen::SdoRecord& record, const std::filesystem::path& dataFolder) {
  if (record.upload) {
    mBuffer.resize(kUploadCapacity);
    return true;
  }
  if (!EncodeData(record.data, record.objectSize, dataFolder, mBuffer)) return false;
  mBuffer.push_back(0);
  return true;
}

bool SdoTransfer::Start(NCanopen::SdoRecord& record, const GeneratorNumbers& numbers,
                        const std::filesystem::path& dataFolder) {
  End();  // before the buffer goes: the engine may still be at work on it
  if (!mOutput || !FillBuffer(record, dataFolder)) return false;
  NSdo::SdoOpen(mEngine, static_cast<std::uint8_t>(numbers.sdoBlockSize));
  mRunning = true;
  const auto node = static_cast<std::uint8_t>(record.nodeId <= 0xFF ? record.nodeId : 0);
  const auto index = static_cast<std::uint16_t>(record.index);
  const auto subIndex = static_cast<std::uint8_t>(record.subIndex);
  const std::uint16_t timeout = NSdo::SdoTimeoutOf(numbers.sdoTimeout);
  const std::uint16_t block = record.blockTransfer ? 1 : 0;
  const auto size = static_cast<std::uint32_t>(mBuffer.size());
  if (record.upload) {
    NSdo::SdoRead(mEngine, node, index, subIndex, mBuffer.data(), size, record.cobIdRx, record.cobIdTx,
                  timeout, block);
  } else {
    NSdo::SdoWrite(mEngine, node, index, subIndex, mBuffer.data(), size - 1, record.cobIdRx, record.cobIdTx,
                   timeout, block);
  }
  return true;
}

bool SdoTransfer::HasEnded() const {
  return mEngine.finished || !mEngine.ready || mEngine.startStatus != NSdo::SDO_OK;
}

SdoTransferResult SdoTransfer::Result() const {
  if (!mEngine.ready) return {};
  if (mEngine.startStatus != NSdo::SDO_OK) return {NSdk::kTransferRefused};
  const NSdo::SdoResult result = NSdo::SdoResultOf(mEngine);
  if (!mEngine.finished) return {NSdk::kTransferDropped, result.transferred};
  if (mEngine.succeeded) return {NSdk::kTransferDone, result.transferred};
  return {NSdk::kTransferAborted, result.transferred, result.abortCode};
}

void SdoTransfer::Feed(const NSdk::CanFrame& frame) { NSdo::SdoFeed(mEngine, frame); }

void SdoTransfer::Tick() { NSdo::SdoTick(mEngine); }

}  // namespace NIg
