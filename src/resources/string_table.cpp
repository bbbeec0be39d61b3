#include "resources/string_table.h"

#include <algorithm>
#include <iterator>

#include "resources/language_file.h"
#include "resources/resource_ids.h"

namespace NResources {
namespace {

#define STRING(id, text) {id, L"" text},
constexpr StringEntry kStrings[] = {
#include LANGUAGE_FILE
};
#undef STRING

consteval bool IsAscending() {
  for (std::size_t position = 1; position < std::size(kStrings); ++position) {
    if (kStrings[position - 1].id >= kStrings[position].id) return false;
  }
  return true;
}
static_assert(IsAscending(), "the texts are kept in the order of the numbers: it is searched by halving");

}  // namespace

std::span<const StringEntry> StringTable() { return kStrings; }

const wchar_t* FindInStringTable(std::uint32_t id) {
  const auto* entry = std::ranges::lower_bound(kStrings, id, {}, &StringEntry::id);
  return entry != std::end(kStrings) && entry->id == id ? entry->text : nullptr;
}

}  // namespace NResources
