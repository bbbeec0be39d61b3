#pragma once
// The error frames with which Linux reports what a CAN controller sees.

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>

#include "host/runtime/loop.h"

namespace NBuses {

struct CanError {
  std::uint32_t classes = 0;              ///< the identifier without its flag bits
  std::array<std::uint8_t, 8> data = {};  ///< zeros where only the classes are known
};

/// In words, the gravest first: `bus-off`, `error passive (sending)`, `nobody acknowledges the frames`.
std::string ErrorText(const CanError& error);

/// A disturbed bus gives thousands of error frames a second. Says which of them the user is to hear of.
class CanErrorFilter {
 public:
  /// Words for this one; empty when the same was told within the last second.
  std::optional<std::string> Tell(const CanError& error, NRuntime::Time now);

 private:
  std::map<std::string, NRuntime::Time> mTold;
  std::uint64_t mUntold = 0;
};

}  // namespace NBuses
