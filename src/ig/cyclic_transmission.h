#pragma once
// The timers of a block's cyclic messages.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "com/com_ptr.h"
#include "ig/snapshot.h"
#include "sdk/runtime.h"

namespace NIg {

/// One cyclic message: first sent after its delay, then every cycle.
struct ZTimerInfo {
  std::uint32_t delay = 0;      ///< ms
  std::uint32_t firstShot = 1;  ///< the delay runs
  NCom::ComPtr<NSdk::ITimer> timer;
  std::uint32_t cycle = 0;       ///< ms
  std::size_t listPosition = 0;  ///< of the item
  NCanopen::ZMsgItemInfo* item = nullptr;
};

class CyclicTransmission {
 public:
  /// Makes one timer per item and starts each with the item's delay, 0 included.
  void Start(NSdk::IRuntime& runtime, NSdk::ITimerSink& sink, const Snapshot& items);
  /// Stops and releases all timers. Records that were handed out are gone.
  void Stop();
  /// The message whose timer this is; null when it is none of them.
  ZTimerInfo* Find(const NSdk::ITimer* timer);
  /// To be called after an expiry: goes over from the delay to the cycle.
  static void Expired(ZTimerInfo& message);

 private:
  std::vector<std::unique_ptr<ZTimerInfo>> mMessages;
};

}  // namespace NIg
