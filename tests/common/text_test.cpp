#include "common/text.h"

#include <gtest/gtest.h>

namespace {

// U+1F600 in wide text.
constexpr wchar_t kFace[] = L"\U0001F600";

TEST(Text, Utf8BothWays) {
  const struct {
    std::string utf8;
    std::wstring wide;
  } rows[] = {
      {"", L""},
      {"A\x7F", L"A\x7F"},
      {std::string("a\0b", 3), std::wstring(L"a\0b", 3)},
      {"\xC2\x80\xDF\xBF", L"\u0080\u07FF"},
      {"\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF", L"\u0800\uD7FF\uE000\uFFFF"},
      {"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", L"\U00010000\U0010FFFF"},
      {"x\xF0\x9F\x98\x80y", std::wstring(L"x") + kFace + L"y"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(NCommon::FromUtf8(row.utf8), row.wide);
    EXPECT_EQ(NCommon::ToUtf8(row.wide), row.utf8);
  }
}

TEST(Text, IllFormedUtf8IsReplaced) {
  const struct {
    const char* utf8;
    const wchar_t* wide;
  } rows[] = {
      {"\x80", L"\uFFFD"},                                // continuation alone
      {"a\xFF\xFEz", L"a\uFFFD\uFFFDz"},                  // never valid
      {"\xC3", L"\uFFFD"},                                // truncated by the end
      {"\xE2\x82z", L"\uFFFDz"},                          // truncated by another character
      {"\xF0\x9F\x98", L"\uFFFD"},                        // truncated, one replacement
      {"\xC0\xAF", L"\uFFFD\uFFFD"},                      // overlong
      {"\xE0\x80\xAF", L"\uFFFD\uFFFD\uFFFD"},            // overlong
      {"\xED\xA0\x80", L"\uFFFD\uFFFD\uFFFD"},            // surrogate
      {"\xF4\x90\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD"},  // beyond U+10FFFF
      {"\xE2\xC3\xA9", L"\uFFFD\u00E9"},                  // a new character begins at once
  };
  for (const auto& row : rows) EXPECT_EQ(NCommon::FromUtf8(row.utf8), row.wide) << row.utf8;
}

TEST(Text, IllFormedWideTextIsReplaced) {
  const wchar_t high = 0xD83D;
  const wchar_t low = 0xDE00;
  const std::string replaced = "\xEF\xBF\xBD";
  EXPECT_EQ(NCommon::ToUtf8(std::wstring{high}), replaced);
  EXPECT_EQ(NCommon::ToUtf8(std::wstring{low}), replaced);
  EXPECT_EQ(NCommon::ToUtf8(std::wstring{low, high, L'a'}), replaced + replaced + "a");
  EXPECT_EQ(NCommon::ToUtf8(std::wstring{high, high, L'a'}), replaced + replaced + "a");
  if constexpr (sizeof(wchar_t) > 2) {
    EXPECT_EQ(NCommon::ToUtf8(std::wstring{static_cast<wchar_t>(0x110000), static_cast<wchar_t>(-1)}),
              replaced + replaced);
    EXPECT_EQ(NCommon::ToUtf8(std::wstring{high, low}), replaced + replaced) << "two units, no pair";
  }
}

TEST(Text, ItemTextKeepsAsciiAndIsTotal) {
  EXPECT_EQ(NCommon::ToItemText(L"uint:1\n"), "uint:1\n");
  EXPECT_EQ(NCommon::ToWide("uint:1\n"), L"uint:1\n");
  EXPECT_EQ(NCommon::ToWide(""), L"");
  EXPECT_EQ(NCommon::ToItemText(L""), "");
  EXPECT_EQ(NCommon::PathToItemText(NCommon::ItemTextToPath("folder/data.bin")), "folder/data.bin");
  std::string everyByte;
  for (int byte = 0; byte < 256; ++byte) everyByte += static_cast<char>(byte);
  EXPECT_FALSE(NCommon::ToWide(everyByte).empty());
  EXPECT_FALSE(NCommon::ToItemText(std::wstring{0xD83D, L'x', 0xFFFF}).empty());
}

}  // namespace
