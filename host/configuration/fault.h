#pragma once

#include <cstdint>
#include <string>

namespace NConfiguration {

/// Something wrong in the text of a configuration.
struct Fault {
  std::uint32_t line = 0;    ///< from 1
  std::uint32_t column = 0;  ///< in characters from 1, 0: the line alone is known
  std::string place;  ///< of the value, "/channels/0/bus" for instance; empty: the text itself is at fault
  std::string text;
};

}  // namespace NConfiguration
