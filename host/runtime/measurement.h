#pragma once

#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "host/runtime/can_adapter.h"
#include "host/runtime/can_message.h"
#include "host/runtime/com.h"
#include "host/runtime/loop.h"
#include "host/runtime/timer_queue.h"
#include "sdk/blocks.h"
#include "sdk/runtime.h"

namespace NRuntime {

/// A CAN channel of the configuration and its adapter.
struct CanChannel {
  std::uint32_t number = 0;  ///< from 1
  std::unique_ptr<CanAdapter> adapter;
};

/// Follows a measurement from outside the blocks.
class MeasurementObserver {
 public:
  virtual ~MeasurementObserver() = default;
  /// A frame was seen on a channel, sent ones included; called before the blocks get it.
  virtual void OnFrame(const SeenFrame& seen) = 0;
  /// A channel's bus is in trouble.
  virtual void OnTrouble(std::uint32_t channel, const std::string& text) = 0;
  /// No channel will receive anything more, since each replays a log that has ended. Called once in a
  /// measurement, from the loop, after the last frame has been delivered.
  virtual void OnEnd() {}
};

/// Runs blocks on the channels of a configuration.
///
/// Frames reach the blocks in their order and from the loop, never from inside a call that a block makes: a
/// block that sends does not see its own frame before the call returns. One that data passes through may keep
/// a frame from the blocks behind it.
class Measurement {
 public:
  Measurement(Loop& loop, std::vector<CanChannel> channels, MeasurementObserver& observer);
  ~Measurement();
  Measurement(const Measurement&) = delete;
  Measurement& operator=(const Measurement&) = delete;

  /// Opens the channels and starts the blocks in their order. Throws std::runtime_error in words for the user
  /// when a channel cannot be opened or a block refuses; everything is then stopped again.
  void Start(const std::vector<ComPtr<IUnknown>>& blocks);
  /// Stops the blocks in their order and closes the channels. What a block sends while it stops still leaves.
  /// Nothing happens when no measurement runs.
  void Stop();

  bool IsRunning() const { return mRun != nullptr; }
  /// Does a channel have frames on their way that are still to be seen?
  bool IsSending() const;
  /// Since the start of the measurement, zero when none runs.
  Time Elapsed() const;

 private:
  class Port;
  class Output;
  class RunTime;
  struct Run;

  static constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

  void StartBlocks(const std::vector<ComPtr<IUnknown>>& blocks);
  void StopBlocks();
  void CloseChannels();
  void Seen(std::uint32_t channel, const NSdk::CanFrame& frame, Time time, NSdk::CanDirection direction);
  void EndWhenAllHaveEnded();
  void DeliverSoon();
  void Deliver(std::size_t most);
  void DeliverToBlocks(Run& run, const SeenFrame& seen);

  Loop& mLoop;
  MeasurementObserver& mObserver;
  std::vector<std::unique_ptr<Port>> mPorts;
  std::shared_ptr<Run> mRun;  // shared with the objects that blocks hold; they find it ended, not gone
};

}  // namespace NRuntime
