#pragma once
// The module's list of COM objects.

#include <vector>

#include "com/com_ptr.h"
#include "sdk/value_objects.h"

namespace NCommon {

/// A list of the objects, none of them null, which never changes. Throws std::bad_alloc.
NCom::ComPtr<NSdk::IArray> MakeArray(std::vector<NCom::ComPtr<IUnknown>> objects);

}  // namespace NCommon
