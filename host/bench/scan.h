#pragma once

#include "host/bench/scan_options.h"

namespace NBench {

/// Runs `ostrel-bench scan`. Throws std::runtime_error, one line, for bad input: no file is left behind then.
ExitStatus Scan(const ScanOptions& options);

}  // namespace NBench
