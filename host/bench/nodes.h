#pragma once

#include <memory>

#include "host/bench/options.h"

namespace NBench {

/// `ostrel-bench nodes`: the nodes that the module finds in the databases of the channels.
std::unique_ptr<Command> MakeNodesCommand();

}  // namespace NBench
