#pragma once

#include <memory>

#include "host/bench/options.h"

namespace NBench {

std::unique_ptr<Command> MakeDescribeCommand();

}  // namespace NBench
