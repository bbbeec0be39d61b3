#pragma once

#include <memory>

#include "host/bench/options.h"

namespace NBench {

/// `ostrel-bench shell`: a host driven by commands, one line each, typed or from a script.
std::unique_ptr<Command> MakeShellCommand();

}  // namespace NBench
