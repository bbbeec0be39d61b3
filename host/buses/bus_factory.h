#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "host/buses/bus_name.h"
#include "host/buses/replay.h"
#include "host/buses/virtual_bus.h"
#include "host/runtime/can_adapter.h"
#include "host/runtime/io_loop.h"

namespace NBuses {

/// Makes adapters from bus names. It must outlive them, and the loop must outlive it.
class BusFactory {
 public:
  /// For buses inside this program and logs alone.
  explicit BusFactory(NRuntime::Loop& loop) : mVirtualBuses(loop), mReplays(loop) {}
  explicit BusFactory(NRuntime::IoLoop& loop) : mIoLoop(&loop), mVirtualBuses(loop), mReplays(loop) {}

  /// A closed adapter. Throws std::runtime_error, one line that names the word: malformed, an unknown kind
  /// (the known ones are listed), an option or address that the kind does not have. A log that is replayed
  /// as fast as possible lets the loop skip its waits, and then no bus of real time is made any more.
  std::unique_ptr<NRuntime::CanAdapter> Make(std::string_view word);

 private:
  struct Kind;
  using Adapter = std::unique_ptr<NRuntime::CanAdapter>;

  static const std::vector<Kind>& Kinds();
  static const Kind& FindKind(std::string_view word, const BusName& name);
  Adapter MakeVirtual(std::string_view word, const BusName& name);
  Adapter MakeReplay(std::string_view word, const BusName& name);
  Adapter MakeSocketCan(std::string_view word, const BusName& name);
  Adapter MakeSocketcand(std::string_view word, const BusName& name);
  void SkipWaits(std::string_view word);
  void KeepRealTime(std::string_view word);

  friend std::string DescribeBusKinds();

  NRuntime::IoLoop* mIoLoop = nullptr;
  VirtualBuses mVirtualBuses;
  Replays mReplays;
  std::string mRealTimeBus;  // the first one made that goes by the real clock
  std::string mFastReplay;   // the first one made that does not
};

/// The known kinds for a help text, one per line with what may stand behind them.
std::string DescribeBusKinds();

}  // namespace NBuses
