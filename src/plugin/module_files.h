#pragma once
// Files around the module, found by one implementation per platform.

#include <filesystem>

namespace NPlugin {

/// The module's own file.
std::filesystem::path ModuleFile();
/// The program that has loaded it.
std::filesystem::path HostProgram();

/// "dll" or "so".
extern const wchar_t kLibraryExtension[];
/// Handle for NResources::SetLanguageLibrary; null: it cannot be loaded.
void* LoadLanguageLibrary(const std::filesystem::path& file);
void FreeLanguageLibrary(void* library);

}  // namespace NPlugin
