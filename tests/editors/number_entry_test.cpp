#include "editors/number_entry.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr wchar_t kSyntax[] = L"Invalid syntax or value range";
constexpr std::uint32_t kUntouched = 0xABCD;

TEST(NumberEntry, ReadsWholeTextsOnly) {
  constexpr std::uint64_t kRefused = UINT64_MAX;
  const struct {
    const char* text;
    bool hexadecimal;
    std::uint64_t value;
  } rows[] = {
      {"0", false, 0},
      {"010", false, 10},
      {" +7", false, 7},
      {"4294967295", false, 4294967295},
      {"4294967296", false, kRefused},
      {"99999999999999999999", false, kRefused},
      {"", false, kRefused},
      {" ", false, kRefused},
      {"+", false, kRefused},
      {"7 ", false, kRefused},
      {"0x10", false, kRefused},
      {"A", false, kRefused},
      {"1.0", false, kRefused},
      {"-1", false, kRefused},
      {"-0", false, kRefused},
      {"\xB2", false, kRefused},
      {"fF", true, 0xFF},
      {"0x10", true, 0x10},
      {"0X10", true, 0x10},
      {"0x", true, kRefused},
      {"x10", true, kRefused},
      {"10h", true, kRefused},
      {"0xFFFFFFFF", true, 0xFFFFFFFF},
      {"100000000", true, kRefused},
      {"-1", true, kRefused},
  };
  for (const auto& row : rows) {
    std::uint32_t wide = kUntouched;
    std::uint16_t narrow = kUntouched;
    std::wstring message;
    const bool fits = row.value != kRefused;
    EXPECT_EQ(NEditors::ParseNumber(row.text, row.hexadecimal, wide, message), fits) << row.text;
    EXPECT_EQ(wide, fits ? row.value : kUntouched) << row.text;
    EXPECT_EQ(message, fits ? L"" : kSyntax) << row.text;

    const bool fitsNarrow = row.value <= 0xFFFF;
    EXPECT_EQ(NEditors::ParseNumber(row.text, row.hexadecimal, narrow, message), fitsNarrow) << row.text;
    EXPECT_EQ(narrow, fitsNarrow ? row.value : kUntouched) << row.text;
  }
}

TEST(NumberEntry, BoundsAndTheirMessages) {
  enum Rule { kMax, kMin, kRange };
  const struct {
    Rule rule;
    const char* text;
    bool hexadecimal;
    std::uint32_t min, max;
    const wchar_t* message;  // null: accepted
  } rows[] = {
      {kMax, "255", false, 0, 255, nullptr},
      {kMax, "0", false, 0, 255, nullptr},
      {kMax, "256", false, 0, 255, L"Please enter a value less or equal than 255\n"},
      {kMax, "800", true, 0, 0x7FF, L"Please enter a value less or equal than 7FF (hex.)\n"},
      {kMax, "4294967296", false, 0, UINT32_MAX, kSyntax},
      {kMin, "1", false, 1, 0, nullptr},
      {kMin, "0", false, 1, 0, L"Please enter a value greater or equal than 1\n"},
      {kMin, "f", true, 0x1A, 0, L"Please enter a value greater or equal than 1A (hex.)\n"},
      {kRange, "1", false, 1, 127, nullptr},
      {kRange, "127", false, 1, 127, nullptr},
      {kRange, "0", false, 1, 127, L"Please enter a value in the range from 1 to 127\n"},
      {kRange, "128", false, 1, 127, L"Please enter a value in the range from 1 to 127\n"},
      {kRange, "FFF", true, 0x1000, 0xFFFF, L"Please enter a value in the range from 1000 to FFFF (hex.)\n"},
      {kRange, "2000001", false, 1, 2000000, L"Please enter a value in the range from 1 to 2000000\n"},
      {kRange, "1x", false, 1, 127, kSyntax},
  };
  for (const auto& row : rows) {
    const auto check = [&]<class Unsigned>(Unsigned& value, std::wstring& message) {
      const auto min = static_cast<Unsigned>(row.min);
      const auto max = static_cast<Unsigned>(row.max);
      if (row.rule == kMax) return NEditors::CheckMax(row.text, row.hexadecimal, value, max, message);
      if (row.rule == kMin) return NEditors::CheckMin(row.text, row.hexadecimal, value, min, message);
      return NEditors::CheckRange(row.text, row.hexadecimal, value, min, max, message);
    };
    std::uint32_t wide = kUntouched;
    std::wstring message;
    EXPECT_EQ(check(wide, message), row.message == nullptr) << row.text;
    EXPECT_EQ(message, row.message ? row.message : L"") << row.text;
    EXPECT_EQ(wide != kUntouched, row.message == nullptr) << row.text;
    if (row.max > 0xFFFF) continue;
    std::uint16_t narrow = kUntouched;
    std::wstring narrowMessage;
    EXPECT_EQ(check(narrow, narrowMessage), row.message == nullptr) << row.text;
    EXPECT_EQ(narrowMessage, message);
  }
}

TEST(NumberEntry, CanIdentifiers) {
  constexpr wchar_t kTooHigh[] =
      L"Please enter a value less than or equal to 7FF (hex.)\n"
      L"Use the trailing \"x\" to specify extended CAN-ID (e.g. 800x)";
  constexpr wchar_t kTooHighExtended[] = L"Please enter a value less than or equal to 1FFFFFFFx (hex.)\n";
  constexpr wchar_t kNoExtended[] = L"Please enter a value less or equal than 7FF (hex.)\n";
  const struct {
    const char* text;
    bool extendedAllowed;
    std::uint32_t identifier;
    const wchar_t* message;  // null: accepted
  } rows[] = {
      {"7ff", true, 0x7FF, nullptr},
      {" \t7FF ", false, 0x7FF, nullptr},
      {"0", true, 0, nullptr},
      {"0x80", true, 0x80, nullptr},
      {"800", true, 0, kTooHigh},
      {"800", false, 0, kTooHigh},
      {"800x", true, 0x20000800, nullptr},
      {"800XxX ", true, 0x20000800, nullptr},
      {"0x", true, 0x20000000, nullptr},
      {"1FFFFFFFx", true, 0x3FFFFFFF, nullptr},
      {"20000000x", true, 0, kTooHighExtended},
      {"800x", false, 0, kNoExtended},
      {"x", true, 0, kSyntax},
      {"", true, 0, kSyntax},
      {"  ", true, 0, kSyntax},
      {"-1", true, 0, kSyntax},
      {"-1x", false, 0, kSyntax},
      {"7F-", true, 0, kSyntax},
      {"7 F", true, 0, kSyntax},
      {"1 x", true, 0, kSyntax},
      {"7Fg", true, 0, kSyntax},
      {"100000000x", true, 0, kSyntax},
  };
  for (const auto& row : rows) {
    std::uint32_t identifier = kUntouched;
    std::wstring message;
    EXPECT_EQ(NEditors::ParseCanId(row.text, identifier, message, row.extendedAllowed),
              row.message == nullptr)
        << row.text;
    EXPECT_EQ(identifier, row.message ? kUntouched : row.identifier) << row.text;
    EXPECT_EQ(message, row.message ? row.message : L"") << row.text;
  }
}

}  // namespace
