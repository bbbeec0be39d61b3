// Both languages of the program's own texts.

#include <gmock/gmock.h>

#include <algorithm>

#include "host/workbench/texts.h"

namespace {

using namespace NWorkbench;

constexpr TextId kAll[] = {
#define PHRASE(id, english, german) TextId::id,
#include "host/workbench/texts.inc"
#undef PHRASE
};

std::size_t Count(const std::wstring& text, const std::wstring& part) {
  std::size_t count = 0;
  for (std::size_t place = text.find(part); place != std::wstring::npos; place = text.find(part, place + 1))
    ++count;
  return count;
}

TEST(Texts, LanguagesHaveTheSamePlacesAndMnemonics) {
  for (const TextId id : kAll) {
    UseTexts(kGerman);
    const std::wstring german = Text(id);
    UseTexts(kEnglish);
    const std::wstring english = Text(id);
    EXPECT_FALSE(german.empty());
    for (const wchar_t* part : {L"%1", L"%2", L"&", L"\t"}) {
      EXPECT_EQ(Count(english, part), Count(german, part)) << testing::PrintToString(english);
    }
  }
}

TEST(Texts, WhatIsPutInIsNotLookedAtAgain) {
  UseTexts(kEnglish);
  EXPECT_EQ(Text(TextId::StateFrames, L"%2", L"%1"), L"Rx %2   Tx %1");
}

}  // namespace
