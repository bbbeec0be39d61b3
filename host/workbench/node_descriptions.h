#pragma once
// The device descriptions that the databases of the channels name.

#include <filesystem>
#include <vector>

#include "host/runtime/com.h"

namespace NWorkbench {

/// Asks the module's plug-in object, which reads the databases for it. What cannot be read names none.
std::vector<std::filesystem::path> ReadNodeDescriptions(IUnknown& plugIn);

}  // namespace NWorkbench
