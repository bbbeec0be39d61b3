#pragma once

#include <filesystem>

namespace NCommon {

/// Where the user's help is; windows open their topics in it.
void SetHelpFile(std::filesystem::path file);
const std::filesystem::path& HelpFile();

}  // namespace NCommon
