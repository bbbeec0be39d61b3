#include "host/devices/heartbeat_consumer.h"

#include <algorithm>

#include "host/devices/nmt.h"

namespace NDevices {
namespace {

constexpr std::uint16_t kConsumerHeartbeatTime = 0x1016;
constexpr std::uint8_t kMaxNode = 127;

}  // namespace

// Entry of the list: bits 23..16 node-ID, bits 15..0 ms. Either of them 0: not used.
void HeartbeatConsumer::Load() {
  mWatches.clear();
  const std::uint32_t count = mObjects.Number({kConsumerHeartbeatTime, 0});
  for (std::uint32_t place = 1; place <= std::min(count, std::uint32_t{kMaxNode}); ++place) {
    const std::uint32_t value = mObjects.Number({kConsumerHeartbeatTime, static_cast<std::uint8_t>(place)});
    const auto node = static_cast<std::uint8_t>(value >> 16);
    const std::uint32_t period_ms = value & 0xFFFF;
    if (node == 0 || node > kMaxNode || period_ms == 0) continue;
    mWatches.push_back({node, std::chrono::milliseconds(period_ms)});
  }
}

void HeartbeatConsumer::OnFrame(const NSdk::CanFrame& frame, Time now) {
  if (IsRemote(frame) || LengthOf(frame) != 1) return;
  for (Watch& watch : mWatches) {
    if (!Matches(frame, ErrorControlIdentifier(watch.node))) continue;
    watch.due = now + watch.period;
    watch.lost = false;
  }
}

bool HeartbeatConsumer::IsAnyLost() const { return std::ranges::any_of(mWatches, &Watch::lost); }

Time HeartbeatConsumer::NextDeadline() const {
  Time next = kNever;
  for (const Watch& watch : mWatches) next = std::min(next, watch.due);
  return next;
}

std::uint8_t HeartbeatConsumer::OnDeadline(Time now) {
  const auto watch = std::ranges::find_if(mWatches, [now](const Watch& w) { return w.due <= now; });
  if (watch == mWatches.end()) return 0;
  watch->due = kNever;
  watch->lost = true;
  return watch->node;
}

}  // namespace NDevices
