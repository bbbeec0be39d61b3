// What the module's windows go by, without a window.

#include <gtest/gtest.h>

#include "common/pixels.h"
#include "common/placement.h"
#include "common/split_position.h"

namespace {

using NCommon::Area;
using NCommon::Placement;

TEST(WindowPlacement, IsReadAsItWasWritten) {
  const struct {
    Placement placement;
    const wchar_t* text;
  } rows[] = {{{{10, 20, 410, 320}, false}, L"10 20 410 320"},
              {{{-1920, -5, -1, 0}, true}, L"-1920 -5 -1 0 maximised"}};
  for (const auto& row : rows) {
    EXPECT_EQ(NCommon::PlacementText(row.placement), row.text);
    EXPECT_EQ(NCommon::ParsePlacement(row.text), row.placement);
  }
  for (const wchar_t* text : {L"", L"1 2 3", L"1 2 3 x", L"1 2 3 4 minimised", L"1 2 3 4 maximised 5",
                              L"5 0 5 9", L"9 0 5 9", L"0 0 99999999999 9", L"0 0 1000001 9", L"1,2,3,4"}) {
    EXPECT_FALSE(NCommon::ParsePlacement(text)) << text;
  }
}

TEST(WindowPlacement, IsMovedToWhereItCanBeSeen) {
  const Area space = {0, 0, 1000, 700};
  const struct {
    Area wanted;
    Area moved;
  } rows[] = {
      {{100, 100, 300, 200}, {100, 100, 300, 200}},
      {{-50, 650, 150, 750}, {0, 600, 200, 700}},
      {{5000, -900, 5200, -800}, {800, 0, 1000, 100}},
      {{-10, 10, 2000, 20}, {0, 10, 1000, 20}},
  };
  for (const auto& row : rows) EXPECT_EQ(NCommon::MovedInto(row.wanted, space), row.moved);
  EXPECT_EQ(NCommon::MovedInto({5, 5, 9, 9}, {0, 0, 0, 0}), (Area{5, 5, 9, 9}));
}

TEST(SplitPosition, KeepsItsShareAndTheLeastSizes) {
  NCommon::SplitPosition split(0.25);
  EXPECT_EQ(split.At(400, 50, 100), 100);
  EXPECT_EQ(split.At(160, 50, 100), 50);
  EXPECT_EQ(split.At(75, 50, 100), 25) << "no room for both";
  EXPECT_EQ(split.At(-3, 50, 100), 0);
  EXPECT_EQ(split.At(0, 0, 0), 0);
  split.MoveTo(300, 400);
  EXPECT_EQ(split.At(400, 50, 150), 250);
  EXPECT_EQ(split.At(800, 50, 100), 600);
  split.MoveTo(-99999, 400);
  EXPECT_EQ(split.At(400, 50, 100), 50);
  split.MoveTo(10, 0);
  split.Reset();
  EXPECT_EQ(split.At(400, 50, 100), 100);
}

TEST(Pixels, AreTheMeanOfWhatTheyCover) {
  const NCommon::Pixels drawn = {2, 1, {0xFF0000FF, 0x00000000}};
  EXPECT_EQ(NCommon::Resized(drawn, 2, 1).values, drawn.values);
  const std::uint32_t opaque = 0xFF0000FF;
  EXPECT_EQ(NCommon::Resized(drawn, 4, 2).values,
            (std::vector<std::uint32_t>{opaque, opaque, 0, 0, opaque, opaque, 0, 0}));
  EXPECT_EQ(NCommon::Resized(drawn, 3, 1).values, (std::vector<std::uint32_t>{opaque, 0x80000080, 0}));
}

}  // namespace
