#include "host/devices/pdo_mapping.h"

#include <algorithm>

namespace NDevices {
namespace {

constexpr std::uint32_t kMaxBits = 64;
constexpr std::uint16_t kLastDummyType = 7;  // types 1..7 may be mapped as places that nobody takes
constexpr std::uint16_t kFirstProcessObject = 0x2000;

ObjectAddress AddressOf(std::uint32_t mapping) {
  return {static_cast<std::uint16_t>(mapping >> 16), static_cast<std::uint8_t>(mapping >> 8)};
}
std::uint32_t BitsOf(std::uint32_t mapping) { return mapping & 0xFF; }

bool IsDummy(std::uint32_t mapping, PdoDirection direction) {
  const std::uint16_t index = AddressOf(mapping).index;
  return direction == PdoDirection::Receive && index >= 1 && index <= kLastDummyType;
}

// A truth value may be mapped as the one bit that it is.
bool IsLengthOf(DataType type, std::uint32_t bits) {
  if (type == DataType::Boolean && bits == 1) return true;
  const std::uint32_t size = FixedSize(type);
  return size != 0 && bits == 8 * size;
}

std::uint32_t MappingAt(const ObjectDictionary& objects, std::uint16_t index, std::uint32_t place) {
  return objects.Number({index, static_cast<std::uint8_t>(place)});
}

}  // namespace

bool IsTransmissionType(std::uint32_t type, bool isTransmit) {
  return type <= kLastSynchronous || type == 254 || type == 255 || (isTransmit && type == kRemoteOnly);
}

AbortCode CheckMappedObject(const ObjectDictionary& objects, std::uint32_t mapping, PdoDirection direction) {
  const std::uint32_t bits = BitsOf(mapping);
  if (IsDummy(mapping, direction)) {
    return IsLengthOf(DataType{AddressOf(mapping).index}, bits) ? AbortCode::None : AbortCode::NotMappable;
  }
  const Entry* entry = objects.Find(AddressOf(mapping));
  if (!entry) return MissingCode(objects, AddressOf(mapping));
  // What configures the communication is never written by a PDO, whatever a description says of it.
  const bool receive = direction == PdoDirection::Receive;
  const bool inReach = !receive || entry->address.index >= kFirstProcessObject;
  const AbortCode access = receive ? CheckWritable(*entry) : CheckReadable(*entry);
  const bool mappable = entry->mappable && inReach && access == AbortCode::None;
  return mappable && IsLengthOf(entry->type, bits) ? AbortCode::None : AbortCode::NotMappable;
}

AbortCode CheckMapping(const ObjectDictionary& objects, std::uint16_t index, std::uint32_t count,
                       PdoDirection direction) {
  const bool hasPlaces = count <= kMaxBits && objects.Find({index, static_cast<std::uint8_t>(count)});
  if (!hasPlaces) return AbortCode::PdoTooLong;
  std::uint32_t bits = 0;
  for (std::uint32_t place = 1; place <= count; ++place) {
    const std::uint32_t mapping = MappingAt(objects, index, place);
    const AbortCode code = CheckMappedObject(objects, mapping, direction);
    if (code != AbortCode::None) return code;
    bits += BitsOf(mapping);
  }
  return bits <= kMaxBits ? AbortCode::None : AbortCode::PdoTooLong;
}

void PdoMapping::Load(ObjectDictionary& objects, std::uint16_t index, PdoDirection direction) {
  mMapped.clear();
  mBits = 0;
  const std::uint32_t count = objects.Number({index, 0});
  if (CheckMapping(objects, index, count, direction) != AbortCode::None) return;
  for (std::uint32_t place = 1; place <= count; ++place) {
    const std::uint32_t mapping = MappingAt(objects, index, place);
    Entry* entry = IsDummy(mapping, direction) ? nullptr : objects.Find(AddressOf(mapping));
    mMapped.push_back({entry, BitsOf(mapping)});
    mBits += BitsOf(mapping);
  }
}

bool PdoMapping::Maps(const Entry& entry) const {
  return std::ranges::any_of(mMapped, [&entry](const Mapped& mapped) { return mapped.entry == &entry; });
}

void PdoMapping::Pack(std::uint8_t (&data)[8]) const {
  std::uint64_t all = 0;
  std::uint32_t place = 0;
  for (const Mapped& mapped : mMapped) {
    std::uint64_t value = ReadLittleEndian(mapped.entry->value);
    if (mapped.bits == 1) value &= 1;
    all |= value << place;
    place += mapped.bits;
  }
  WriteLittleEndian(data, all);
}

}  // namespace NDevices
