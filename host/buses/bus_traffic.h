#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "host/runtime/loop.h"
#include "sdk/can_frame.h"

namespace NBuses {

class VirtualPort;

/// The frames of a virtual bus on which they take their time. Each port's frames leave in their order. When
/// the bus is free, the first frames of all ports contend for it; of two that are equal the one that has
/// waited longer wins, then that of the port which has sent longer.
///
/// What is sent in answer to a frame, from inside the event or from a task that it has posted, counts as sent
/// at the end of that frame: how late the loop is takes nothing from the bus.
class BusTraffic {
 public:
  /// `sender` is null when it has left.
  using FrameEnd = std::function<void(VirtualPort* sender, const NSdk::CanFrame& frame, NRuntime::Time time)>;

  /// `onFrameEnd` gets each frame at its end, from the loop, with the time at which it ended on the bus,
  /// however late the loop is.
  BusTraffic(NRuntime::Loop& loop, std::uint32_t bitRate, FrameEnd onFrameEnd);

  std::uint32_t BitRate() const { return mBitRate; }

  /// False: the port has too many frames waiting, and this one is given up.
  bool Queue(VirtualPort& port, const NSdk::CanFrame& frame);
  bool IsSending(const VirtualPort& port) const;
  /// What the port has queued still leaves.
  void Leave(const VirtualPort& port);

 private:
  struct Waiting {
    NSdk::CanFrame frame;
    NRuntime::Time since;
  };
  struct Sender {
    VirtualPort* port;
    std::deque<Waiting> frames;
  };
  // The frame that is on the bus, or will be when nothing else comes before its start.
  struct Next {
    std::size_t sender = 0;
    NRuntime::Time end{};
  };

  Sender& SenderOf(VirtualPort& port);
  bool FindNext(Next& next) const;
  const Sender* Earliest() const;
  void SetAlarm();
  void EndFrames();
  void HearReactions();
  NRuntime::Time BitTimes(std::uint32_t count) const;

  NRuntime::Loop& mLoop;
  const std::uint32_t mBitRate;
  FrameEnd mOnFrameEnd;
  std::vector<Sender> mSenders;
  NRuntime::Time mFree{};  // the frame before was over, and the intermission behind it
  // End of the frame that those who heard of it may still react to. Shared with posted tasks.
  std::shared_ptr<std::optional<NRuntime::Time>> mHeard = std::make_shared<std::optional<NRuntime::Time>>();
  std::unique_ptr<NRuntime::Alarm> mAlarm;
};

}  // namespace NBuses
