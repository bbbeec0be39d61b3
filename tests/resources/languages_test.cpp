#include <gtest/gtest.h>

#include <algorithm>
#include <regex>

#include "plugin/language_library.h"
#include "resources/find_text.h"
#include "resources/resource_ids.h"

namespace {

/// OSTREL_LANGUAGE_LIBRARIES names the files of all languages but the module's own.
class Languages : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    library = NPlugin::LoadLanguageLibrary(GetParam());
    ASSERT_TRUE(library) << GetParam();
  }
  void TearDown() override {
    if (library) NPlugin::FreeLanguageLibrary(library);
  }

  void* library = nullptr;
};

std::vector<std::wstring> PlaceholdersOf(const std::wstring& text) {
  static const std::wregex placeholder(L"%[-+ #0]*[0-9]*(\\.[0-9]+)?(l|ll|I64)?[a-zA-Z%]");
  std::vector<std::wstring> found;
  for (std::wsregex_iterator at(text.begin(), text.end(), placeholder), end; at != end; ++at) {
    found.push_back(at->str());
  }
  return found;
}

TEST_P(Languages, HaveEveryTextWithItsPlaceholders) {
  int count = 0;
  for (std::uint32_t id = 0; id <= 0xFFFF; ++id) {
    const std::wstring own = NResources::FindOwnText(id);
    const std::wstring text = NResources::FindLanguageText(library, id);
    EXPECT_EQ(own.empty(), text.empty()) << id;
    EXPECT_EQ(PlaceholdersOf(own), PlaceholdersOf(text)) << id;
    EXPECT_EQ(own.ends_with(L'\n'), text.ends_with(L'\n')) << id;
    EXPECT_EQ(std::ranges::count(own, L'&'), std::ranges::count(text, L'&')) << id;
    count += !text.empty();
  }
  EXPECT_GT(count, 50);
}

TEST(German, IsWritten) {
  void* library = NPlugin::LoadLanguageLibrary(OSTREL_GERMAN_LIBRARY);
  ASSERT_TRUE(library);
  EXPECT_EQ(NResources::FindLanguageText(library, IDS_SCAN_EMCY_DEVICE_PROFILE),
            L"EMCY: geräteprofilspezifisch");
  EXPECT_EQ(NResources::FindLanguageText(library, IDS_TOOL_QUILLON_FAILED),
            L"Quillon kann nicht gestartet werden (Pfad: \"%s\")");
  NPlugin::FreeLanguageLibrary(library);
}

INSTANTIATE_TEST_SUITE_P(Library, Languages, testing::Values(OSTREL_LANGUAGE_LIBRARIES),
                         [](const auto& library) { return "No" + std::to_string(library.index); });

}  // namespace
