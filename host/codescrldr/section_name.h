#pragma once
// What the name of a section stands for.

#include <cstdint>
#include <string_view>

namespace NDescriptions {

enum class SectionKind { Other, Object, SubObject, CompactNames, CompactValues, List, Information, Module };

struct SectionName {
  SectionKind kind = SectionKind::Other;
  std::uint16_t index = 0;    ///< of the first four
  std::uint8_t subindex = 0;  ///< of a sub-object
};

SectionName ParseSectionName(std::string_view name);

}  // namespace NDescriptions
