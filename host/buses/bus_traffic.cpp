#include "host/buses/bus_traffic.h"

#include <algorithm>
#include <tuple>

#include "host/buses/frame_time.h"

namespace NBuses {
namespace {

constexpr std::size_t kMaxWaiting = 1024;  // frames of a port

}  // namespace

BusTraffic::BusTraffic(NRuntime::Loop& loop, std::uint32_t bitRate, FrameEnd onFrameEnd)
    : mLoop(loop),
      mBitRate(bitRate),
      mOnFrameEnd(std::move(onFrameEnd)),
      mAlarm(loop.MakeAlarm([this] { EndFrames(); })) {}

bool BusTraffic::Queue(VirtualPort& port, const NSdk::CanFrame& frame) {
  Sender& sender = SenderOf(port);
  if (sender.frames.size() >= kMaxWaiting) return false;
  sender.frames.push_back({frame, mHeard->value_or(mLoop.Now())});
  if (sender.frames.size() == 1) SetAlarm();
  return true;
}

bool BusTraffic::IsSending(const VirtualPort& port) const {
  return std::any_of(mSenders.begin(), mSenders.end(),
                     [&](const Sender& sender) { return sender.port == &port && !sender.frames.empty(); });
}

BusTraffic::Sender& BusTraffic::SenderOf(VirtualPort& port) {
  const auto known = std::find_if(mSenders.begin(), mSenders.end(),
                                  [&](const Sender& sender) { return sender.port == &port; });
  return known != mSenders.end() ? *known : mSenders.emplace_back(Sender{&port, {}});
}

void BusTraffic::Leave(const VirtualPort& port) {
  for (Sender& sender : mSenders) {
    if (sender.port == &port) sender.port = nullptr;
  }
  std::erase_if(mSenders, [](const Sender& sender) { return !sender.port && sender.frames.empty(); });
}

const BusTraffic::Sender* BusTraffic::Earliest() const {
  const Sender* earliest = nullptr;
  for (const Sender& sender : mSenders) {
    if (sender.frames.empty()) continue;
    if (!earliest || sender.frames.front().since < earliest->frames.front().since) earliest = &sender;
  }
  return earliest;
}

// Worked out anew each time instead of being kept: until a frame has started, another one that is sent at the
// same moment may still win against it. Behind the start nothing that is sent changes it any more.
bool BusTraffic::FindNext(Next& next) const {
  const Sender* winner = Earliest();
  if (!winner) return false;
  const NRuntime::Time start = std::max(mFree, winner->frames.front().since);
  const auto rank = [](const Waiting& waiting) {
    return std::tuple(ArbitrationField(waiting.frame), waiting.since);
  };
  for (const Sender& sender : mSenders) {
    if (sender.frames.empty() || sender.frames.front().since > start) continue;
    if (rank(sender.frames.front()) < rank(winner->frames.front())) winner = &sender;
  }
  next.sender = static_cast<std::size_t>(winner - mSenders.data());
  next.end = start + BitTimes(FrameBits(winner->frames.front().frame));
  return true;
}

NRuntime::Time BusTraffic::BitTimes(std::uint32_t count) const {
  return NRuntime::Time((std::int64_t{count} * 1'000'000'000 + mBitRate / 2) / mBitRate);
}

void BusTraffic::SetAlarm() {
  Next next;
  if (FindNext(next)) mAlarm->SetFor(next.end);
}

// Until the loop has done what was posted meanwhile.
void BusTraffic::HearReactions() {
  if (!mHeard->has_value()) return;
  mLoop.Post([heard = mHeard, time = **mHeard] {
    if (*heard == time) heard->reset();
  });
}

// More than one frame has ended when the loop is late. Who hears of one may send, or leave the bus.
void BusTraffic::EndFrames() {
  Next next;
  while (FindNext(next) && next.end <= mLoop.Now()) {
    Sender& sender = mSenders[next.sender];
    VirtualPort* const port = sender.port;
    const NSdk::CanFrame frame = sender.frames.front().frame;
    sender.frames.pop_front();
    if (!port && sender.frames.empty())
      mSenders.erase(mSenders.begin() + static_cast<std::ptrdiff_t>(next.sender));
    mFree = next.end + BitTimes(kIntermissionBits);
    *mHeard = next.end;
    mOnFrameEnd(port, frame, next.end);
  }
  HearReactions();
  SetAlarm();
}

}  // namespace NBuses
