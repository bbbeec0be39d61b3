#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "host/buses/virtual_bus.h"
#include "host/runtime/can_adapter.h"

namespace NBuses {

/// Makes adapters from bus names. It must outlive them, and the loop must outlive it.
class BusFactory {
 public:
  explicit BusFactory(NRuntime::Loop& loop) : mVirtualBuses(loop) {}

  /// A closed adapter. Throws std::runtime_error, one line that names the word: malformed, an unknown kind
  /// (the known ones are listed), an option or address that the kind does not have.
  std::unique_ptr<NRuntime::CanAdapter> Make(std::string_view word);

 private:
  VirtualBuses mVirtualBuses;
};

/// The known kinds for a help text, one per line with what may stand behind them.
std::string DescribeBusKinds();

}  // namespace NBuses
