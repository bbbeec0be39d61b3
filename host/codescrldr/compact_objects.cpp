#include "host/codescrldr/compact_objects.h"

#include <algorithm>
#include <iterator>

#include "host/codescrldr/data_types.h"
#include "host/codescrldr/object_reader.h"

namespace NDescriptions {
namespace {

using namespace CODESCRLDR;

constexpr std::uint32_t kUnsigned8 = 0x05;
constexpr std::uint32_t kUnsigned16 = 0x06;
constexpr std::uint32_t kUnsigned32 = 0x07;
constexpr std::uint16_t kErrorHistory = 0x1003;
constexpr std::uint16_t kMappingOffset = 0x200;
constexpr std::uint8_t kMappedObjects = 8;
constexpr std::uint32_t kPredefinedPdos = 4;  // of each kind

struct PdoKind {
  std::uint16_t parameter;
  std::uint16_t identifier;  // of the first PDO, without the node-ID
  const char* name;
};

constexpr PdoKind kReceive = {0x1400, 0x200, "Receive PDO"};
constexpr PdoKind kTransmit = {0x1800, 0x180, "Transmit PDO"};

struct PdoEntry {
  const char* name;
  std::uint32_t type;
  const char* value;
};

// Sub-indices 1 to 6 of a communication parameter. The value of the first depends on the PDO.
constexpr PdoEntry kPdoEntries[] = {
    {"COB-ID", kUnsigned32, ""},        {"Transmission type", kUnsigned8, "255"},
    {"Inhibit time", kUnsigned16, "0"}, {"Compatibility entry", kUnsigned8, "0"},
    {"Event timer", kUnsigned16, "0"},  {"SYNC start value", kUnsigned8, "0"},
};

SubObject* FindSub(Object& object, std::uint64_t subindex) {
  const auto found = std::find_if(object.subObjects.begin(), object.subObjects.end(),
                                  [&](const SubObject& sub) { return sub.subindex == subindex; });
  return found == object.subObjects.end() ? nullptr : &*found;
}

// The error history is emptied, and a mapping is put in force, by writing sub-index 0.
bool IsWrittenCount(std::uint16_t index) {
  const std::uint16_t receive = kReceive.parameter + kMappingOffset;
  const std::uint16_t transmit = kTransmit.parameter + kMappingOffset;
  return index == kErrorHistory || (index >= receive && index < receive + kMappingOffset) ||
         (index >= transmit && index < transmit + kMappingOffset);
}

SubObject MakeCount(const SubObject& parent, std::uint32_t count) {
  SubObject sub;
  sub.index = parent.index;
  sub.name = "NrOfObjects";
  sub.dataType = kUnsigned8;
  sub.access = IsWrittenCount(parent.index) ? parent.access : kReadOnly;
  sub.value = sub.defaultValue = std::to_string(count);
  return sub;
}

void SortSubs(Object& object) {
  std::stable_sort(object.subObjects.begin(), object.subObjects.end(),
                   [](const SubObject& a, const SubObject& b) { return a.subindex < b.subindex; });
}

// The numbers that lists like these use as keys.
std::uint64_t NumberOf(std::string_view key) {
  const auto number = ParseNumber(key);
  return number && !number->hasNodeId && !number->isNegative ? number->magnitude : 0;
}

Object MakeParameter(const PdoKind& kind, std::uint32_t number, std::uint32_t mask) {
  Object object;
  object.index = static_cast<std::uint16_t>(kind.parameter + number);
  object.name = std::string(kind.name) + " " + std::to_string(number + 1) + " parameter";
  object.objectType = kObjectRecord;
  for (std::size_t i = 0; i < std::size(kPdoEntries); ++i) {
    if ((mask & (1u << i)) == 0) continue;
    SubObject sub;
    sub.index = object.index;
    sub.subindex = static_cast<std::uint8_t>(i + 1);
    sub.name = kPdoEntries[i].name;
    sub.dataType = kPdoEntries[i].type;
    sub.value = kPdoEntries[i].value;
    if (i == 0) {
      sub.value = number < kPredefinedPdos ? "$NODEID+" + std::to_string(kind.identifier + number * 0x100)
                                           : "0x80000000";
    }
    sub.defaultValue = sub.value;
    object.subObjects.push_back(std::move(sub));
  }
  const std::uint32_t last = object.subObjects.empty() ? 0 : object.subObjects.back().subindex;
  object.subObjects.insert(object.subObjects.begin(), MakeCount(object, last));
  return object;
}

Object MakeMapping(const PdoKind& kind, std::uint32_t number) {
  Object object;
  object.index = static_cast<std::uint16_t>(kind.parameter + kMappingOffset + number);
  object.name = std::string(kind.name) + " " + std::to_string(number + 1) + " mapping";
  object.objectType = kObjectRecord;
  object.dataType = kUnsigned32;
  object.value = object.defaultValue = "0";
  AddCompactSubObjects(object, kMappedObjects);
  object.dataType = 0;
  object.value.clear();
  object.defaultValue.clear();
  object.subObjects.front() = MakeCount(object, 0);
  return object;
}

void AddPdos(std::map<std::uint16_t, Object>& objects, const PdoKind& kind, std::uint32_t mask,
             std::uint32_t count) {
  const auto first = objects.lower_bound(kind.parameter);
  const auto last = objects.lower_bound(static_cast<std::uint16_t>(kind.parameter + kMappingOffset));
  auto described = static_cast<std::uint32_t>(std::distance(first, last));
  for (std::uint32_t number = 0; described < count && number < kMappingOffset; ++number) {
    Object parameter = MakeParameter(kind, number, mask);
    Object mapping = MakeMapping(kind, number);
    const std::uint16_t index = parameter.index, mappingIndex = mapping.index;
    if (!objects.emplace(index, std::move(parameter)).second) continue;
    objects.emplace(mappingIndex, std::move(mapping));
    ++described;
  }
}

}  // namespace

void AddCompactSubObjects(Object& object, std::uint32_t count) {
  if (!FindSub(object, 0)) object.subObjects.push_back(MakeCount(object, count));
  SubObject pattern = static_cast<const SubObject&>(object);
  pattern.objectType = kObjectVar;
  for (std::uint32_t place = 1; place <= count; ++place) {
    if (FindSub(object, place)) continue;
    pattern.subindex = static_cast<std::uint8_t>(place);
    pattern.name = object.name + std::to_string(place);
    object.subObjects.push_back(pattern);
  }
  SortSubs(object);
}

void NameCompactSubObjects(Object& object, const IniSection& names) {
  for (const IniKey& key : names.keys) {
    SubObject* const sub = FindSub(object, NumberOf(key.key));
    if (sub && !key.value.empty() && NumberOf(key.key) != 0) sub->name = Shortened(Unquoted(key.value), 1024);
  }
}

void SetCompactValues(Object& object, const IniSection& values, ObjectReader& reader) {
  for (const IniKey& key : values.keys) {
    SubObject* const sub = FindSub(object, NumberOf(key.key));
    if (!sub || key.value.empty() || NumberOf(key.key) == 0) continue;
    reader.CheckValue(key, sub->dataType);
    sub->value = key.value;
  }
}

void AddCompactPdos(std::map<std::uint16_t, Object>& objects, std::uint32_t mask, std::uint32_t receive,
                    std::uint32_t transmit) {
  AddPdos(objects, kReceive, mask, receive);
  AddPdos(objects, kTransmit, mask, transmit);
}

}  // namespace NDescriptions
