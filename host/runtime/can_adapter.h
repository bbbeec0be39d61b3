#pragma once
// The seam between a measurement and whatever carries its frames: a bus inside this program, an interface of
// the system, a network connection, a recorded log. Everything happens on the loop's thread.

#include <functional>
#include <string>

#include "host/runtime/loop.h"
#include "sdk/can_frame.h"

namespace NRuntime {

/// What an adapter reports. The calls may come from inside CanAdapter::Send.
class CanAdapterEvents {
 public:
  virtual ~CanAdapterEvents() = default;
  /// A frame of another participant was seen at `time` on the loop's clock.
  virtual void OnReceived(const NSdk::CanFrame& frame, Time time) = 0;
  /// A frame of this adapter was on the bus at `time`.
  virtual void OnSent(const NSdk::CanFrame& frame, Time time) = 0;
  /// The bus or the way to it is in trouble, in words: error states, a lost connection, a frame that was
  /// given up. The adapter stays open.
  virtual void OnTrouble(const std::string& text) = 0;
  /// Nothing more will be received, ever: a recorded log has come to its end. The adapter stays open.
  virtual void OnEnd() {}
};

/// One channel's way to a bus.
class CanAdapter {
 public:
  /// Gets what is wrong, in words for the user; empty: nothing.
  using Prepared = std::function<void(const std::string& fault)>;

  virtual ~CanAdapter() = default;
  /// Does what of Open() takes long, without holding up the loop. `done` is called once, from inside the call
  /// or later, and possibly after Close(); it goes when nothing of the adapter waits any more.
  virtual void Prepare(Prepared done) { done({}); }  // NOLINT(performance-unnecessary-value-param)
  /// Joins the bus. Throws std::runtime_error in words for the user; the adapter is then closed.
  virtual void Open(CanAdapterEvents& events) = 0;
  /// Leaves it; no event comes afterwards. Nothing happens when it is closed.
  virtual void Close() = 0;
  /// Queues a frame behind those sent before. Its fields have been checked.
  virtual void Send(const NSdk::CanFrame& frame) = 0;
  /// Do frames wait of which it is known that they will be reported as sent?
  virtual bool IsSending() const { return false; }
};

}  // namespace NRuntime
