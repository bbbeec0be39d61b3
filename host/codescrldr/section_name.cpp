#include "host/codescrldr/section_name.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string>

#include "host/codescrldr/ini_text.h"

namespace NDescriptions {
namespace {

struct NameRow {
  std::string_view name;
  SectionKind kind;
};

constexpr NameRow kNames[] = {
    {"MandatoryObjects", SectionKind::List},           {"OptionalObjects", SectionKind::List},
    {"ManufacturerObjects", SectionKind::List},        {"FileInfo", SectionKind::Information},
    {"DeviceInfo", SectionKind::Information},          {"DeviceComissioning", SectionKind::Information},
    {"DeviceCommissioning", SectionKind::Information}, {"Comments", SectionKind::Information},
    {"DummyUsage", SectionKind::Information},
};

constexpr NameRow kSuffixes[] = {
    {"Name", SectionKind::CompactNames},
    {"Denotation", SectionKind::CompactNames},
    {"Value", SectionKind::CompactValues},
};

template <class Number>
bool ParseHexadecimal(std::string_view digits, std::size_t most, Number& number) {
  if (digits.empty() || digits.size() > most) return false;
  const char* const end = digits.data() + digits.size();
  return std::from_chars(digits.data(), end, number, 16).ptr == end;
}

// "M1" to "M254" and what stands behind: "M1ModuleInfo", "M1SubExtends".
bool IsModule(std::string_view name) {
  return name.size() > 1 && (name[0] == 'M' || name[0] == 'm') && name[1] >= '0' && name[1] <= '9';
}

}  // namespace

SectionName ParseSectionName(std::string_view name) {
  SectionName parsed;
  if (ParseHexadecimal(name, 4, parsed.index)) {
    parsed.kind = SectionKind::Object;
    return parsed;
  }
  for (const NameRow& row : kNames) {
    if (IsSameWord(row.name, name)) return {row.kind, 0, 0};
  }
  if (IsModule(name)) return {SectionKind::Module, 0, 0};
  const std::size_t digits =
      std::min<std::size_t>(name.find_first_not_of("0123456789abcdefABCDEF"), name.size());
  for (std::size_t size = std::min<std::size_t>(digits, 4); size > 0; --size) {
    const std::string_view rest = name.substr(size);
    if (!ParseHexadecimal(name.substr(0, size), 4, parsed.index)) continue;
    if (rest.size() > 3 && IsSameWord(rest.substr(0, 3), "sub") &&
        ParseHexadecimal(rest.substr(3), 2, parsed.subindex)) {
      parsed.kind = SectionKind::SubObject;
      return parsed;
    }
    for (const NameRow& row : kSuffixes) {
      if (IsSameWord(row.name, rest)) return {row.kind, parsed.index, 0};
    }
  }
  return {};
}

}  // namespace NDescriptions
