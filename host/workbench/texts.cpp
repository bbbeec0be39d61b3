#include "host/workbench/texts.h"

namespace NWorkbench {
namespace {

struct Row {
  const wchar_t* english;
  const wchar_t* german;
};

constexpr Row kTexts[] = {
#define PHRASE(id, english, german) {L"" english, L"" german},
#include "host/workbench/texts.inc"
#undef PHRASE
};

std::uint32_t gLanguage = kEnglish;

void Replace(std::wstring& text, const wchar_t* mark, const std::wstring& value) {
  const std::size_t place = text.find(mark);
  if (place != std::wstring::npos) text.replace(place, 2, value);
}

}  // namespace

void UseTexts(std::uint32_t language) { gLanguage = language; }

const wchar_t* Text(TextId id) {
  const Row& row = kTexts[static_cast<int>(id)];
  return gLanguage == kGerman ? row.german : row.english;
}

// The second first: what is put in may hold a mark itself.
std::wstring Text(TextId id, const std::wstring& value, const std::wstring& second) {
  std::wstring text = Text(id);
  Replace(text, L"%2", second);
  Replace(text, L"%1", value);
  return text;
}

}  // namespace NWorkbench
