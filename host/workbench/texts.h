#pragma once
// What the workbench itself says, in the languages that it knows; the module has its own texts.

#include <cstdint>
#include <string>

namespace NWorkbench {

enum class TextId {
#define PHRASE(id, english, german) id,
#include "host/workbench/texts.inc"
#undef PHRASE
};

inline constexpr std::uint32_t kEnglish = 1, kGerman = 7;

/// Texts are in this language from now on; English where there is no such language.
void UseTexts(std::uint32_t language);

const wchar_t* Text(TextId id);
/// The text with `value` in the place of its "%1", and `second` in that of its "%2".
std::wstring Text(TextId id, const std::wstring& value, const std::wstring& second = {});

}  // namespace NWorkbench
