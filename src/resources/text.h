#pragma once
// Texts that the user sees, by number.

#include <cstdint>
#include <string>

namespace NResources {

/// Text of an identifier IDS_... from resource_ids.h, in the user's language where its library has the text,
/// else in the module's own. A text that neither has is a programming error: E:"noOfChar" is raised.
std::wstring LoadText(std::uint32_t id);

/// Takes texts from a language library from now on: an HMODULE on Windows, elsewhere a handle of dlopen()
/// whose library exports OstrelLanguageText. Null goes back to the module's own texts. The caller keeps the
/// library loaded while it is set.
void SetLanguageLibrary(void* library);
void* LanguageLibrary();

}  // namespace NResources
