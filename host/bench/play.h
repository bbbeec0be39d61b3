#pragma once

#include "host/bench/play_options.h"

namespace NBench {

/// Runs `ostrel-bench play`. Throws std::runtime_error, one line, for bad input: nothing was transmitted
/// then, and no file is left behind.
ExitStatus Play(const PlayOptions& options);

}  // namespace NBench
