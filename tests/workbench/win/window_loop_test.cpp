// asio's header comes first: it brings the socket headers, which must precede those of Windows.
#include "host/workbench/win/window_loop.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <numeric>
#include <vector>

#include "tests/windows/window_driver.h"

namespace {

using namespace std::chrono_literals;

TEST(WindowLoop, WhatIsDueComesInAFloodAsWell) {
  constexpr int kTimes = 50;
  NWorkbench::WindowLoop loop([](const std::string& fault) { ADD_FAILURE() << fault; });
  loop.SetFlooded(true);
  std::vector<NRuntime::Time> late;
  NRuntime::Time due = loop.Now();
  std::unique_ptr<NRuntime::Alarm> alarm;
  alarm = loop.MakeAlarm([&] {
    late.push_back(loop.Now() - due);
    if (late.size() < kTimes) alarm->SetFor(due += 10ms);
  });
  alarm->SetFor(due);
  ASSERT_TRUE(NTest::PumpUntil([&] { return late.size() == kTimes; }, 10000)) << late.size();
  const auto mean = std::accumulate(late.begin(), late.end(), NRuntime::Time{}) / kTimes;
  std::printf("mean lateness %.1f ms\n", static_cast<double>(mean.count()) / 1e6);
  EXPECT_LT(mean, 20ms) << "a pause of 4 ms, and what a busy machine takes";
}

}  // namespace
