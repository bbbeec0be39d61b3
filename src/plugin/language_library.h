#pragma once
// Libraries that hold the module's texts in another language, loaded by one implementation per platform.

#include <filesystem>

namespace NPlugin {

/// Handle for NResources::SetLanguageLibrary; null: it cannot be loaded.
void* LoadLanguageLibrary(const std::filesystem::path& file);
void FreeLanguageLibrary(void* library);

}  // namespace NPlugin
