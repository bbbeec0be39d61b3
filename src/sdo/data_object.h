#pragma once
// Values of object dictionaries as COM objects.

#include <cstdint>

#include "com/com_ptr.h"
#include "sdk/sdo_observation.h"

namespace NSdo {

/// A value of `size` bytes. Up to four bytes are zero; more are allocated and not initialised. Throws
/// std::bad_alloc.
NCom::ComPtr<NSdk::ICANopenDataObject> CreateDataObject(std::uint16_t index, std::uint8_t subindex,
                                                        std::uint32_t size);

/// The same, with the value of an object of up to four bytes.
NCom::ComPtr<NSdk::ICANopenDataObject> CreateDataObjectWithValue(std::uint16_t index, std::uint8_t subindex,
                                                                 std::uint32_t size, std::uint32_t value);

}  // namespace NSdo
