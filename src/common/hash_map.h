#pragma once
// The module's map from numbers to COM objects.

#include "com/com_ptr.h"
#include "sdk/value_objects.h"

namespace NCommon {

/// Largest table that NSdk::IHashMap::Resize makes; beyond it, and below 0, the answer is E_OUTOFMEMORY.
inline constexpr std::int32_t kMaxHashMapSize = 0x100'0000;

/// An empty map without a table: Resize gives it one. Throws std::bad_alloc.
NCom::ComPtr<NSdk::IHashMap> MakeHashMap();

}  // namespace NCommon
