#pragma once

#include <cstdint>
#include <string>

namespace NPlugin {

/// What the module says of itself.
struct Version {
  std::uint32_t majorNumber = 0;
  std::uint32_t minorNumber = 0;
  std::uint32_t build = 0;
  std::wstring productName;
  std::wstring description;
};

/// On Windows out of the version resource of the module's file; empty where it has none.
Version ReadVersion();

}  // namespace NPlugin
