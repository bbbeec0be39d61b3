#pragma once
// Objects that a file describes in few words: arrays by CompactSubObj, PDOs by CompactPDO.

#include <map>

#include "host/codescrldr/description.h"
#include "host/codescrldr/ini_text.h"

namespace NDescriptions {

class ObjectReader;

/// Sub-index 0 and sub-indices 1 to `count`, which take after the object. Those that it has already stay.
void AddCompactSubObjects(Object& object, std::uint32_t count);
/// Names and values for them, "1=..." and so on; either section may be null.
void NameCompactSubObjects(Object& object, const IniSection& names);
void SetCompactValues(Object& object, const IniSection& values, ObjectReader& reader);

/// The PDO parameters that the device has without describing them: as many of each kind as `receive` and
/// `transmit` say, with the sub-indices that the bits of `mask` name.
void AddCompactPdos(std::map<std::uint16_t, Object>& objects, std::uint32_t mask, std::uint32_t receive,
                    std::uint32_t transmit);

}  // namespace NDescriptions
