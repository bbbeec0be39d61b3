#include "host/workbench/flood_watch.h"

#include <gtest/gtest.h>

#include <optional>

namespace {

using namespace std::chrono_literals;
using NRuntime::Time;

// When a flood has begun, with so many frames a second for a second.
std::optional<Time> BeginOfFlood(NWorkbench::FloodWatch& watch, Time from, int perSecond) {
  std::optional<Time> begin;
  for (int frame = 0; frame < perSecond; ++frame) {
    const Time now = from + Time(1s) / perSecond * frame;
    if (watch.Add(now)) begin = now;
  }
  return begin;
}

TEST(FloodWatch, BeginsAtOnceAndEndsASecondAfterTheLastOfIt) {
  NWorkbench::FloodWatch watch;
  EXPECT_EQ(BeginOfFlood(watch, 0s, 2900), std::nullopt);
  EXPECT_FALSE(watch.HasEnded(1s));
  const auto begin = BeginOfFlood(watch, 1s, 8000);
  ASSERT_TRUE(begin);
  EXPECT_LT(*begin, 1150ms);
  EXPECT_EQ(BeginOfFlood(watch, 2s, 8000), std::nullopt) << "it goes on";
  EXPECT_FALSE(watch.HasEnded(3s));
  EXPECT_EQ(BeginOfFlood(watch, 3s, 1000), std::nullopt);
  EXPECT_TRUE(watch.HasEnded(4200ms));
  EXPECT_FALSE(watch.HasEnded(5s));
  EXPECT_TRUE(BeginOfFlood(watch, 5s, 3100)) << "the next one";
}

}  // namespace
