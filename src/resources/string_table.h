#pragma once
// The string table as C++ sees it.

#include <cstdint>
#include <span>

namespace NResources {

struct StringEntry {
  std::uint32_t id;
  const wchar_t* text;
};

/// All texts in the module's own language, ascending by identifier, each once.
std::span<const StringEntry> StringTable();

}  // namespace NResources
