#include "host/devices/object_dictionary.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace NDevices {
namespace {

bool SuitsType(const Entry& entry) {
  const std::uint32_t size = FixedSize(entry.type);
  if (size == 0) return entry.value.size() <= entry.maxSize && entry.low.empty() && entry.high.empty();
  const auto isLimit = [size](const Bytes& limit) { return limit.empty() || limit.size() == size; };
  return entry.value.size() == size && isLimit(entry.low) && isLimit(entry.high);
}

}  // namespace

std::vector<Entry>::const_iterator ObjectDictionary::LowerBound(ObjectAddress address) const {
  return std::ranges::lower_bound(mEntries, address, {}, &Entry::address);
}

void ObjectDictionary::Add(Entry entry) {
  if (!SuitsType(entry))
    throw std::invalid_argument("the value or a limit of an object does not suit its type");
  const auto place = LowerBound(entry.address);
  if (place != mEntries.end() && place->address == entry.address) {
    throw std::invalid_argument("an object stands twice in the dictionary");
  }
  mEntries.insert(place, std::move(entry));
}

const Entry* ObjectDictionary::Find(ObjectAddress address) const {
  const auto place = LowerBound(address);
  return place != mEntries.end() && place->address == address ? &*place : nullptr;
}

Entry* ObjectDictionary::Find(ObjectAddress address) {
  return const_cast<Entry*>(std::as_const(*this).Find(address));
}

bool ObjectDictionary::HasObject(std::uint16_t index) const {
  const auto place = LowerBound({index, 0});
  return place != mEntries.end() && place->address.index == index;
}

std::uint32_t ObjectDictionary::Number(ObjectAddress address, std::uint32_t missing) const {
  const Entry* entry = Find(address);
  return entry ? static_cast<std::uint32_t>(ReadLittleEndian(entry->value)) : missing;
}

void ObjectDictionary::SetNumber(ObjectAddress address, std::uint32_t value) {
  if (Entry* entry = Find(address)) WriteLittleEndian(entry->value, value);
}

void ObjectDictionary::CopyValues(const ObjectDictionary& from, std::uint16_t first, std::uint16_t last) {
  for (Entry& entry : mEntries) {
    if (entry.address.index < first || entry.address.index > last) continue;
    if (const Entry* source = from.Find(entry.address)) entry.value = source->value;
  }
}

AbortCode CheckReadable(const Entry& entry) {
  return entry.access == Access::WriteOnly ? AbortCode::WriteOnly : AbortCode::None;
}

AbortCode CheckWritable(const Entry& entry) {
  const bool writable = entry.access == Access::ReadWrite || entry.access == Access::WriteOnly;
  return writable ? AbortCode::None : AbortCode::ReadOnly;
}

AbortCode CheckSize(const Entry& entry, std::uint64_t size) {
  const std::uint32_t fixed = FixedSize(entry.type);
  if (size > (fixed != 0 ? fixed : entry.maxSize)) return AbortCode::LengthTooHigh;
  return size < fixed ? AbortCode::LengthTooLow : AbortCode::None;
}

AbortCode CheckLimits(const Entry& entry, BytesView value) {
  if (!entry.high.empty() && IsLess(entry.type, entry.high, value)) return AbortCode::ValueTooHigh;
  if (!entry.low.empty() && IsLess(entry.type, value, entry.low)) return AbortCode::ValueTooLow;
  return AbortCode::None;
}

AbortCode MissingCode(const ObjectDictionary& objects, ObjectAddress address) {
  return objects.HasObject(address.index) ? AbortCode::NoSubindex : AbortCode::NoObject;
}

}  // namespace NDevices
