#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

#include "host/bench/options.h"

namespace NBench {

/// What `ostrel-bench describe` is asked to do.
struct DescribeOptions {
  std::filesystem::path file;
  std::optional<std::uint32_t> nodeId;  ///< empty: that of the file
  bool json = false;
};

/// Throws std::runtime_error, one line, when nothing of the file can be used.
ExitStatus Describe(const DescribeOptions& options);

}  // namespace NBench
