#include "host/codescrldr/description_reader.h"

#include "host/codescrldr/compact_objects.h"
#include "host/codescrldr/data_types.h"
#include "host/codescrldr/object_reader.h"
#include "host/codescrldr/section_name.h"

namespace NDescriptions {
namespace {

using namespace CODESCRLDR;

constexpr std::size_t kMostObjects = 262144;  // with sub-objects
constexpr std::uint32_t kMostSubObjects = 254;
constexpr std::uint16_t kFirstReal = 0x1000;  // below stand the data types
constexpr std::uint32_t kMostPdos = 512;
constexpr std::uint32_t kMaxNode = 127;
constexpr std::uint32_t kLssUnconfigured = 255;
constexpr std::uint32_t kMostBitRate = 10'000;  // in kbit/s
constexpr const char* kListNames[] = {"MandatoryObjects", "OptionalObjects", "ManufacturerObjects"};

std::string IndexText(std::uint16_t index) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (int shift = 12; shift >= 0; shift -= 4) text += kDigits[(index >> shift) & 15];
  return text;
}

class Reader {
 public:
  Reader(std::string_view text, std::optional<std::uint32_t> nodeId)
      : mIni(text, mFindings), mObjectReader(mFindings, FindNodeId(nodeId)) {}

  Description Read();

 private:
  // The sections of one index.
  struct Parts {
    const IniSection* object = nullptr;
    std::map<std::uint8_t, const IniSection*> subObjects;
    const IniSection* names = nullptr;
    const IniSection* values = nullptr;
  };

  std::optional<std::uint32_t> FindNodeId(std::optional<std::uint32_t> given);
  const IniSection* Commissioning() const;
  std::optional<std::uint32_t> Number(const char* section, const char* key, std::uint32_t most);
  void SortSections();
  void Place(const IniSection& section, const IniSection*& place);
  void KeepInformation(const IniSection& section);
  void ReadList(const IniSection& list);
  void ReadObject(std::uint16_t index, const Parts& parts);
  Object ReadWhole(std::uint16_t index, const Parts& parts);
  void ExpandCompact(const Parts& parts, Object& object);
  void CheckCount(const IniSection& section, const Object& object);
  void AddPdos();
  void CheckLists();
  bool TakeRoom(std::size_t count, std::uint32_t line);
  void Add(Result code, std::uint32_t line, std::string text) { mFindings.Add(code, line, std::move(text)); }

  Findings mFindings;
  Description mDescription;  // before what sets parts of it
  IniText mIni;
  ObjectReader mObjectReader;
  std::map<std::uint16_t, Parts> mParts;
  std::map<std::uint16_t, std::uint32_t> mListed;  // with the line of the list
  std::map<std::uint16_t, Object> mObjects;
  std::size_t mCount = 0;
  bool mSaidTooMuch = false;
  bool mHasList = false;
};

// The standard spells it with one m, many files with two.
const IniSection* Reader::Commissioning() const {
  const IniSection* const usual = mIni.Find("DeviceComissioning");
  return usual ? usual : mIni.Find("DeviceCommissioning");
}

// Everything else is read with the node-ID, so it is looked for first.
std::optional<std::uint32_t> Reader::FindNodeId(std::optional<std::uint32_t> given) {
  const IniSection* const section = Commissioning();
  ObjectReader reader(mFindings, std::nullopt);
  const auto inFile = section ? reader.ReadNumber(*section, "NodeID", kLssUnconfigured) : std::nullopt;
  const bool isNode = inFile && *inFile >= 1 && *inFile <= kMaxNode;
  if (inFile && !isNode && *inFile != 0 && *inFile != kLssUnconfigured) {
    Add(kWarnBadNumber, section->Find("NodeID")->line,
        "NodeID=" + std::to_string(*inFile) +
            " is not from 1 to 127; the device is taken for one without a node-ID");
  }
  if (isNode) mDescription.nodeId = static_cast<std::uint32_t>(*inFile);
  if (given) mDescription.nodeId = given;
  return mDescription.nodeId;
}

std::optional<std::uint32_t> Reader::Number(const char* section, const char* key, std::uint32_t most) {
  const IniSection* const found = mIni.Find(section);
  const auto number = found ? mObjectReader.ReadNumber(*found, key, most) : std::nullopt;
  return number ? std::optional(static_cast<std::uint32_t>(*number)) : std::nullopt;
}

Description Reader::Read() {
  SortSections();
  for (const char* name : kListNames) {
    if (const IniSection* const list = mIni.Find(name)) ReadList(*list);
  }
  for (const auto& [index, parts] : mParts) ReadObject(index, parts);
  AddPdos();
  CheckLists();
  if (const IniSection* const section = Commissioning()) {
    const auto bitRate = mObjectReader.ReadNumber(*section, "Baudrate", kMostBitRate);
    if (bitRate && *bitRate != 0) mDescription.bitRate = static_cast<std::uint32_t>(*bitRate * 1000);
  }
  mDescription.isRecognised = mHasList || !mObjects.empty();
  mDescription.objects.reserve(mObjects.size());
  for (auto& [index, object] : mObjects) mDescription.objects.push_back(std::move(object));
  mDescription.findings = mFindings.Take();
  return std::move(mDescription);
}

void Reader::SortSections() {
  bool saidModules = false;
  for (const IniSection& section : mIni.Sections()) {
    const SectionName name = ParseSectionName(section.name);
    if (name.kind == SectionKind::Object) Place(section, mParts[name.index].object);
    if (name.kind == SectionKind::SubObject) Place(section, mParts[name.index].subObjects[name.subindex]);
    if (name.kind == SectionKind::CompactNames) mParts[name.index].names = &section;
    if (name.kind == SectionKind::CompactValues) Place(section, mParts[name.index].values);
    if (name.kind == SectionKind::Information) KeepInformation(section);
    if (name.kind == SectionKind::Module && !saidModules) {
      saidModules = true;
      Add(kWarnSkipped, section.line, "modules are not read; the device is taken without them");
    }
  }
}

// The same index may be written in two ways, [A00] and [0A00].
void Reader::Place(const IniSection& section, const IniSection*& place) {
  if (!place) {
    place = &section;
  } else {
    Add(kWarnDuplicate, section.line,
        "[" + Shortened(section.name) + "] is the same as [" + Shortened(place->name) + "] in line " +
            std::to_string(place->line) + "; this one is skipped");
  }
}

void Reader::KeepInformation(const IniSection& section) {
  for (const IniKey& key : section.keys) {
    mDescription.information.emplace(InformationKey(section.name, key.key), Unquoted(key.value));
  }
}

void Reader::ReadList(const IniSection& list) {
  mHasList = true;
  std::uint64_t entries = 0;
  for (const IniKey& key : list.keys) {
    if (!ParseNumber(key.key) || key.value.empty()) continue;
    ++entries;
    const auto index = ParseNumber(Unquoted(key.value));
    if (!index || index->hasNodeId || index->isNegative || index->magnitude > 0xFFFF) {
      Add(kWarnBadNumber, key.line, Shortened(key.value) + " is no index of an object; the line is skipped");
    } else if (!mListed.emplace(static_cast<std::uint16_t>(index->magnitude), key.line).second) {
      Add(kWarnDuplicate, key.line,
          "object " + IndexText(static_cast<std::uint16_t>(index->magnitude)) +
              " is listed already; the line is skipped");
    }
  }
  const auto count = mObjectReader.ReadNumber(list, "SupportedObjects", 0xFFFF);
  if (count && *count != entries) {
    Add(kWarnWrongCount, list.Find("SupportedObjects")->line,
        "SupportedObjects is " + std::to_string(*count) + ", the list has " + std::to_string(entries) +
            "; all of them are taken");
  }
}

bool Reader::TakeRoom(std::size_t count, std::uint32_t line) {
  if (mCount + count <= kMostObjects) {
    mCount += count;
    return true;
  }
  if (!mSaidTooMuch) {
    Add(kWarnTooMuch, line,
        "more than " + std::to_string(kMostObjects) + " objects; what does not fit is left out");
  }
  mSaidTooMuch = true;
  return false;
}

// Without the section of the object its sub-objects make a record of unknown name.
Object Reader::ReadWhole(std::uint16_t index, const Parts& parts) {
  if (parts.object) {
    const auto compact = mObjectReader.ReadNumber(*parts.object, "CompactSubObj", 0xFFFF);
    Object object;
    static_cast<SubObject&>(object) =
        mObjectReader.Read(*parts.object, index, 0, parts.subObjects.empty() && !compact.value_or(0));
    return object;
  }
  Add(kWarnMissingSection, parts.subObjects.begin()->second->line,
      "[" + IndexText(index) + "] is missing; a record without a name is assumed for its sub-objects");
  Object object;
  object.index = index;
  object.objectType = kObjectRecord;
  return object;
}

void Reader::ReadObject(std::uint16_t index, const Parts& parts) {
  if (!parts.object && parts.subObjects.empty()) return;
  const std::uint32_t line = parts.object ? parts.object->line : parts.subObjects.begin()->second->line;
  if (!TakeRoom(1 + parts.subObjects.size(), line)) return;
  Object object = ReadWhole(index, parts);
  for (const auto& [subindex, section] : parts.subObjects) {
    object.subObjects.push_back(mObjectReader.Read(*section, index, subindex, true));
  }
  if (parts.object) {
    ExpandCompact(parts, object);
    CheckCount(*parts.object, object);
    if (!mListed.contains(index) && index >= kFirstReal) {
      Add(kWarnUnlisted, line, "no list names the object " + IndexText(index) + "; it is taken");
    }
  }
  mObjects.emplace(index, std::move(object));
}

void Reader::ExpandCompact(const Parts& parts, Object& object) {
  auto count = mObjectReader.ReadNumber(*parts.object, "CompactSubObj", 0xFFFF).value_or(0);
  if (count == 0) return;
  if (count > kMostSubObjects) {
    Add(kWarnWrongCount, parts.object->Find("CompactSubObj")->line,
        "CompactSubObj is " + std::to_string(count) + "; " + std::to_string(kMostSubObjects) + " are taken");
    count = kMostSubObjects;
  }
  if (!TakeRoom(static_cast<std::size_t>(count) + 1, parts.object->line)) return;
  AddCompactSubObjects(object, static_cast<std::uint32_t>(count));
  if (parts.names) NameCompactSubObjects(object, *parts.names);
  if (parts.values) SetCompactValues(object, *parts.values, mObjectReader);
}

void Reader::CheckCount(const IniSection& section, const Object& object) {
  const auto count = mObjectReader.ReadNumber(section, "SubNumber", 0xFFFF);
  const std::size_t there = object.subObjects.size();
  const auto compact = section.Find("CompactSubObj");
  if (count && *count != there && (!compact || there == 0)) {
    Add(kWarnWrongCount, section.Find("SubNumber")->line,
        "SubNumber of " + IndexText(object.index) + " is " + std::to_string(*count) + ", " +
            std::to_string(there) + " sub-objects are described; those are taken");
  }
  const bool wantsSubs = object.objectType == kObjectArray || object.objectType == kObjectRecord;
  if (!count && wantsSubs && there == 0) {
    Add(kWarnWrongCount, section.line,
        "object " + IndexText(object.index) +
            " has no sub-objects, but is an array or a record; it is taken as it is");
  }
}

void Reader::AddPdos() {
  const std::uint32_t mask = Number("DeviceInfo", "CompactPDO", 0xFF).value_or(0);
  if (mask == 0) return;
  const auto receive = Number("DeviceInfo", "NrOfRXPDO", kMostPdos);
  const auto transmit = Number("DeviceInfo", "NrOfTXPDO", kMostPdos);
  AddCompactPdos(mObjects, mask, receive.value_or(0), transmit.value_or(0));
}

void Reader::CheckLists() {
  for (const auto& [index, line] : mListed) {
    if (mObjects.contains(index) || mParts.contains(index)) continue;
    Add(kWarnMissingSection, line, "[" + IndexText(index) + "] is missing; the object is left out");
  }
}

}  // namespace

std::string InformationKey(std::string_view section, std::string_view key) {
  std::string name = LowerCase(section);
  if (name == "devicecommissioning") name = "devicecomissioning";
  return name + '/' + LowerCase(key);
}

Description ReadDescription(std::string_view text, std::optional<std::uint32_t> nodeId) {
  return Reader(text, nodeId).Read();
}

}  // namespace NDescriptions
