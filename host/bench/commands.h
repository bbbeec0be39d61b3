#pragma once

#include <memory>

#include "host/bench/options.h"

namespace NBench {

/// `ostrel-bench commands`: what the module has registered.
std::unique_ptr<Command> MakeCommandsCommand();

}  // namespace NBench
