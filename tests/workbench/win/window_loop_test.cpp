// asio's header comes first: it brings the socket headers, which must precede those of Windows.
#include "host/workbench/win/window_loop.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <numeric>
#include <vector>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

void HandleMessages() {
  MsgWaitForMultipleObjects(0, nullptr, FALSE, 5, QS_ALLINPUT);
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
}

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
  for (const auto end = Clock::now() + 10s; late.size() < kTimes && Clock::now() < end;) HandleMessages();
  ASSERT_EQ(late.size(), kTimes);
  const auto mean = std::accumulate(late.begin(), late.end(), NRuntime::Time{}) / kTimes;
  std::printf("mean lateness %.1f ms\n", static_cast<double>(mean.count()) / 1e6);
  EXPECT_LT(mean, 20ms) << "a pause of 4 ms, and what a busy machine takes";
}

}  // namespace
