#pragma once

#include <windows.h>

#include <filesystem>

namespace NTools {

/// What the screen shows in this area, as a bitmap file. False: it cannot be written.
bool SavePicture(const RECT& area, const std::filesystem::path& file);

}  // namespace NTools
