#include "host/codescrldr/object_reader.h"

#include "host/codescrldr/data_types.h"

namespace NDescriptions {
namespace {

using namespace CODESCRLDR;

constexpr std::size_t kLongestName = 1024;
constexpr std::uint32_t kAnyNumber = 0xFFFFFFFF;

struct AccessRow {
  std::string_view text;
  AccessType access;
};

constexpr AccessRow kAccess[] = {{"rw", kReadWrite}, {"wo", kWriteOnly},       {"ro", kReadOnly},
                                 {"const", kConst},  {"rwr", kReadWriteInput}, {"rww", kReadWriteOutput}};

std::string Named(const IniSection& section) { return "[" + Shortened(section.name) + "]"; }

std::string Hexadecimal(std::uint64_t number) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  do {
    text.insert(text.begin(), kDigits[number & 15]);
    number >>= 4;
  } while (number != 0);
  return "0x" + text;
}

bool IsObjectType(std::uint64_t type) {
  return type == kObjectNull || type == kObjectDomain || (type >= kObjectDefType && type <= kObjectRecord);
}

}  // namespace

std::optional<std::uint64_t> ObjectReader::ReadNumber(const IniSection& section, std::string_view key,
                                                      std::uint64_t most) {
  const IniKey* const found = section.Find(key);
  if (!found || found->value.empty()) return std::nullopt;
  const auto number = ParseNumber(Unquoted(found->value));
  const auto value = number ? number->With(mNodeId) : std::nullopt;
  if (!value || number->isNegative || *value > most) {
    mFindings.Add(kWarnBadNumber, found->line,
                  std::string(found->key) + "=" + Shortened(found->value) + ": a number from 0 to " +
                      std::to_string(most) + " is expected; the line is skipped");
    return std::nullopt;
  }
  if (number->isOddOctal) {
    mFindings.Add(kWarnBadNumber, found->line,
                  Shortened(found->value) + " begins with 0 but is not octal; it is taken for decimal");
  }
  return value;
}

void ObjectReader::CheckValue(const IniKey& key, std::uint32_t dataType) {
  const std::string shown = std::string(key.key) + "=" + Shortened(key.value);
  const DataTypeRow* const type = FindDataType(dataType);
  if (!type || type->kind == ValueKind::Unknown || key.value.empty()) return;
  const auto report = [&](const std::string& text) { mFindings.Add(kWarnBadNumber, key.line, text); };
  if (type->kind == ValueKind::Signed || type->kind == ValueKind::Unsigned) {
    const auto number = ParseNumber(key.value);
    if (!number) return report(shown + " is no number; the value cannot be used");
    if (number->isOddOctal) {
      report(Shortened(key.value) + " begins with 0 but is not octal; it is taken for decimal");
    }
    const auto value = ReadInteger(dataType, key.value, mNodeId.value_or(0));
    if (!value) return report(shown + " is too large; the value cannot be used");
    if (!value->fits) {
      report(shown + " does not fit " + type->name + "; it is taken for " +
             Hexadecimal(type->size < 8 ? value->bits & ((std::uint64_t{1} << 8 * type->size) - 1)
                                        : value->bits));
    }
  } else if (!ReadBytes(dataType, key.value, mNodeId)) {
    report(shown + " is no " + type->name + "; the value cannot be used");
  }
}

void ObjectReader::ReadType(const IniSection& section, bool isWhole, SubObject& object) {
  const auto objectType = ReadNumber(section, "ObjectType", kAnyNumber);
  object.objectType = static_cast<std::uint32_t>(objectType.value_or(isWhole ? kObjectVar : kObjectRecord));
  if (!IsObjectType(object.objectType)) {
    mFindings.Add(
        kWarnUnknownType, section.Find("ObjectType")->line,
        "object type " + Hexadecimal(object.objectType) + " is unknown; the object is kept with it");
  }
  const auto dataType = ReadNumber(section, "DataType", kAnyNumber);
  const bool isDomain = object.objectType == kObjectDomain;
  const bool isValue = object.objectType == kObjectVar;
  object.dataType = static_cast<std::uint32_t>(dataType.value_or(isDomain ? 0xF : 0));
  if (dataType && !FindDataType(object.dataType)) {
    mFindings.Add(
        kWarnUnknownType, section.Find("DataType")->line,
        "data type " + Hexadecimal(*dataType) + " is unknown; the size of the value is taken for 0");
  }
  if (!dataType && isWhole && isValue && !section.Find("DataType")) {
    mFindings.Add(kWarnMissingKey, section.line,
                  Named(section) + " has no DataType; the size of the value is taken for 0");
  }
}

void ObjectReader::ReadAccess(const IniSection& section, bool isWhole, SubObject& object) {
  const IniKey* const found = section.Find("AccessType");
  if (!found || found->value.empty()) {
    if (isWhole && object.objectType == kObjectVar) {
      mFindings.Add(kWarnMissingKey, section.line, Named(section) + " has no AccessType; rw is assumed");
    }
    return;
  }
  for (const AccessRow& row : kAccess) {
    if (IsSameWord(row.text, Unquoted(found->value))) {
      object.access = row.access;
      return;
    }
  }
  mFindings.Add(
      kWarnUnknownType, found->line,
      "AccessType=" + Shortened(found->value) + ": rw, ro, wo, const, rwr or rww is expected; rw is assumed");
}

std::string ObjectReader::ReadValue(const IniSection& section, std::string_view key, std::uint32_t dataType) {
  const IniKey* const found = section.Find(key);
  if (!found) return {};
  CheckValue(*found, dataType);
  return std::string(found->value);
}

SubObject ObjectReader::Read(const IniSection& section, std::uint16_t index, std::uint8_t subindex,
                             bool isWhole) {
  SubObject object;
  object.index = index;
  object.subindex = subindex;
  const IniKey* name = section.Find("Denotation");
  if (!name || name->value.empty()) name = section.Find("ParameterName");
  if (name) object.name = Unquoted(name->value);
  if (object.name.size() > kLongestName) object.name = Shortened(object.name, kLongestName);
  if (!name) {
    mFindings.Add(kWarnMissingKey, section.line, Named(section) + " has no ParameterName; it stays empty");
  }
  ReadType(section, isWhole, object);
  ReadAccess(section, isWhole, object);
  object.isMappable = ReadNumber(section, "PDOMapping", kAnyNumber).value_or(0) != 0;
  object.flags = static_cast<std::uint32_t>(ReadNumber(section, "ObjFlags", kAnyNumber).value_or(0));
  object.defaultValue = ReadValue(section, "DefaultValue", object.dataType);
  object.value = ReadValue(section, "ParameterValue", object.dataType);
  if (object.value.empty()) object.value = object.defaultValue;
  object.lowLimit = ReadValue(section, "LowLimit", object.dataType);
  object.highLimit = ReadValue(section, "HighLimit", object.dataType);
  return object;
}

}  // namespace NDescriptions
