#pragma once
// The CAN interfaces of Linux; one source file per platform.

#include <memory>
#include <string>

#include "host/runtime/can_adapter.h"
#include "host/runtime/io_loop.h"

namespace NBuses {

/// Whether this system has such interfaces at all.
bool HasSocketCan();

/// A closed adapter for an interface by its name; only where there are such interfaces.
///
/// A frame counts as sent when the interface says that it was on the bus. What the interface cannot take at
/// once waits in a queue. An interface that goes down, or away, is used again when it comes back.
std::unique_ptr<NRuntime::CanAdapter> MakeSocketCan(NRuntime::IoLoop& loop, const std::string& interfaceName);

}  // namespace NBuses
