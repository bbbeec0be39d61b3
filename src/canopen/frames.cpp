#include "canopen/frames.h"

#include <algorithm>
#include <array>

#include "canopen/message_items.h"

namespace NCanopen {

namespace {

constexpr std::uint32_t kMaxFrameData = 8;

NSdk::CanFrame FrameHead(std::uint32_t cobId, std::uint32_t dlc) {
  NSdk::CanFrame frame;
  frame.identifier = IdentifierOf(cobId);
  frame.flags = (dlc & NSdk::kFrameDlcMask) | (IsExtended(cobId) ? NSdk::kFrameExtended : 0);
  return frame;
}

// At most 8 bytes.
NSdk::CanFrame DataFrame(std::uint32_t cobId, std::span<const std::uint8_t> data) {
  NSdk::CanFrame frame = FrameHead(cobId, static_cast<std::uint32_t>(data.size()));
  std::copy(data.begin(), data.end(), frame.data);
  return frame;
}

}  // namespace

NSdk::CanFrame SyncFrame(const SyncRecord& record) { return FrameHead(record.cobId, 0); }

NSdk::CanFrame EmcyFrame(const EmcyRecord& record) {
  std::array<std::uint8_t, kMaxFrameData> data = {static_cast<std::uint8_t>(record.errorCode & 0xFF),
                                                  static_cast<std::uint8_t>(record.errorCode >> 8),
                                                  record.errorRegister};
  std::copy(record.manufacturer.begin(), record.manufacturer.end(), data.begin() + 3);
  return DataFrame(record.cobId, data);
}

NSdk::CanFrame StateFrame(const StateRecord& record) {
  return DataFrame(record.cobId, std::array{StateByte(record)});
}

NSdk::CanFrame NmtFrame(std::uint8_t command, std::uint8_t nodeId) {
  return DataFrame(kNmtCobId, std::array{command, nodeId});
}

NSdk::CanFrame RtrFrame(const RtrRecord& record) {
  NSdk::CanFrame frame = FrameHead(record.cobId, record.dlc);
  frame.flags |= NSdk::kFrameRemote;
  return frame;
}

NSdk::CanFrame PdoFrame(std::uint32_t cobId, std::span<const std::uint8_t> data) {
  const auto count = std::min(static_cast<std::uint32_t>(data.size()) & NSdk::kFrameDlcMask, kMaxFrameData);
  return DataFrame(cobId, data.first(count));
}

std::optional<NSdk::CanFrame> FrameOf(const ZMsgItemInfo& item) {
  if (const auto* sync = dynamic_cast<const ZSyncItemInfo*>(&item)) return SyncFrame(sync->record);
  if (const auto* emcy = dynamic_cast<const ZEmcyItemInfo*>(&item)) return EmcyFrame(emcy->record);
  if (const auto* heartbeat = dynamic_cast<const ZHBeatItemInfo*>(&item))
    return StateFrame(heartbeat->record);
  if (const auto* guard = dynamic_cast<const ZGuardingItemInfo*>(&item)) return StateFrame(guard->record);
  if (const auto* nmt = dynamic_cast<const ZNMTItemInfo*>(&item)) {
    return NmtFrame(nmt->record.command, nmt->record.nodeId);
  }
  if (const auto* rtr = dynamic_cast<const ZRTRItemInfo*>(&item)) return RtrFrame(rtr->record);
  return std::nullopt;
}

}  // namespace NCanopen
