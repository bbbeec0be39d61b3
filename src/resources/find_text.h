#pragma once
// Where a platform keeps the texts.

#include <cstdint>
#include <string>

namespace NResources {

/// Text of the module itself; empty when it has none.
std::wstring FindOwnText(std::uint32_t id);

/// Text of a language library; empty when it has none.
std::wstring FindLanguageText(void* library, std::uint32_t id);

}  // namespace NResources
