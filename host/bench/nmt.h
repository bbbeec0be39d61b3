#pragma once

#include <memory>

#include "host/bench/options.h"

namespace NBench {

/// `ostrel-bench nmt`: the module's NMT commands, executed by their names as a menu would.
std::unique_ptr<Command> MakeNmtCommand();

}  // namespace NBench
