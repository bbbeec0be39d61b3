#pragma once

#include <cstdint>
#include <filesystem>

namespace NPlugin {

/// Takes the module's texts from the language's library beside the module; the user is told when there is
/// none. Language 1 is the module's own.
void UseLanguage(std::uint32_t language);
/// Goes back to the module's own texts and frees the library.
void ReleaseLanguage();

/// The help in a language, below the folder above the module's; English where there is none.
std::filesystem::path FindHelpFile(const std::filesystem::path& module, std::uint32_t language);

}  // namespace NPlugin
