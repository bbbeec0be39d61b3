#pragma once
// The string table as C++ sees it.

#include <cstdint>
#include <span>

namespace NResources {

struct StringEntry {
  std::uint32_t id;
  const wchar_t* text;
};

/// All texts of the language that this was compiled for, ascending by identifier, each once: in the module
/// its own language, in a language library the library's.
std::span<const StringEntry> StringTable();
/// The text of an identifier in it; null: it has none.
const wchar_t* FindInStringTable(std::uint32_t id);

}  // namespace NResources
