#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "host/buses/bus_factory.h"
#include "host/runtime/asio_loop.h"
#include "tests/buses/listener.h"

namespace NTest {

/// Buses on a loop that waits as in earnest.
class RealTime : public testing::Test {
 protected:
  /// Runs the loop until the condition holds or the time is over; whether it holds.
  bool RunUntil(const std::function<bool()>& condition, NRuntime::Time limit = std::chrono::seconds(30)) {
    bool holds = false;
    const auto end = loop.Now() + limit;
    std::unique_ptr<NRuntime::Alarm> alarm = loop.MakeAlarm([&] {
      holds = condition();
      if (holds || loop.Now() > end) return loop.Stop();
      alarm->SetFor(loop.Now() + std::chrono::milliseconds(1));
    });
    alarm->SetFor(loop.Now());
    loop.Run();
    return holds;
  }

  NRuntime::AsioLoop loop;
  NBuses::BusFactory factory{loop};
  Listener one, two, three;
};

}  // namespace NTest
