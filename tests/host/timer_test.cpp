#include <gmock/gmock.h>

#include <functional>

#include "host/runtime/asio_loop.h"
#include "host/runtime/timer_queue.h"
#include "tests/host/virtual_loop.h"

namespace {

using namespace std::chrono_literals;
using NRuntime::ComPtr;
using NRuntime::Time;
using NTest::VirtualLoop;
using testing::ElementsAre;
using testing::IsEmpty;

// Notes when its timers expire, in milliseconds since it was made, and does what a test wants then.
class Sink final : public NRuntime::Implements<NSdk::ITimerSink> {
 public:
  explicit Sink(NRuntime::Clock& clock) : mClock(clock), mStart(clock.Now()) {}

  HRESULT STDMETHODCALLTYPE OnTimer(NSdk::ITimer* timer) override {
    expiries.push_back((mClock.Now() - mStart) / 1ms);
    if (action) action(timer);
    return S_OK;
  }

  std::vector<long long> expiries;
  std::function<void(NSdk::ITimer*)> action;

 private:
  NRuntime::Clock& mClock;
  Time mStart;
};

class Timers : public testing::Test {
 protected:
  ComPtr<NSdk::ITimer> Start(std::uint32_t period_ms, bool periodic) {
    auto timer = queue.CreateTimer(sink.Get());
    timer->Start(period_ms, periodic);
    return timer;
  }

  VirtualLoop loop;
  NRuntime::TimerQueue queue{loop};
  ComPtr<Sink> sink = NRuntime::Make<Sink>(loop);
};

TEST_F(Timers, PeriodicDeadlinesDoNotDriftWhenExpiriesAreLateAndCallbacksTakeTime) {
  const auto other = NRuntime::Make<Sink>(loop);
  other->action = [&](NSdk::ITimer*) { loop.Block(3ms); };  // makes every expiry of the timer late
  const auto otherTimer = queue.CreateTimer(other.Get());
  otherTimer->Start(10, true);
  const auto timer = Start(10, true);
  sink->action = [&](NSdk::ITimer*) { loop.Block(2ms); };
  loop.RunFor(10s);
  ASSERT_EQ(sink->expiries.size(), 1000u);
  EXPECT_EQ(sink->expiries.back(), 10003);
}

TEST_F(Timers, MissedExpiriesAreNotMadeUp) {
  const auto timer = Start(10, true);
  loop.RunFor(10ms);
  loop.Block(57ms);  // 20 to 60 pass by
  loop.RunFor(20ms);
  EXPECT_THAT(sink->expiries, ElementsAre(10, 67, 70, 80));
}

TEST_F(Timers, OneShotFiresOnceAndCanBeStartedAgain) {
  const auto timer = Start(5, false);
  loop.RunFor(50ms);
  timer->Start(7, false);
  loop.RunFor(50ms);
  EXPECT_THAT(sink->expiries, ElementsAre(5, 57));
}

TEST_F(Timers, StartOfARunningTimerReplacesItsDeadlines) {
  const auto timer = Start(10, true);
  loop.RunFor(5ms);
  timer->Start(20, true);
  loop.RunFor(45ms);
  EXPECT_THAT(sink->expiries, ElementsAre(25, 45));
}

TEST_F(Timers, PeriodZeroIsSoonAndDoesNotStarveTheLoop) {
  const auto periodic = Start(0, true);
  loop.RunFor(3ms);
  EXPECT_THAT(sink->expiries, ElementsAre(1, 2, 3));
  periodic->Stop();
  sink->expiries.clear();
  const auto once = Start(0, false);
  sink->action = [&](NSdk::ITimer* timer) {
    if (sink->expiries.size() < 5) timer->Start(0, false);
    loop.Post([&] { sink->expiries.push_back(-1); });
  };
  loop.RunFor(0ms);
  EXPECT_THAT(sink->expiries, ElementsAre(3, -1, 3, -1, 3, -1));
}

TEST_F(Timers, AStoppedTimerIsNotDeliveredEvenWhenItWasDue) {
  const auto first = Start(10, false);
  const auto second = Start(10, false);
  sink->action = [&](NSdk::ITimer*) { second->Stop(); };
  loop.Block(30ms);  // both are due
  loop.RunFor(30ms);
  EXPECT_THAT(sink->expiries, ElementsAre(30));
}

TEST_F(Timers, StopInsideItsOwnCallbackEndsAPeriodicTimer) {
  const auto timer = Start(10, true);
  sink->action = [](NSdk::ITimer* own) { own->Stop(); };
  loop.RunFor(100ms);
  EXPECT_THAT(sink->expiries, ElementsAre(10));
}

TEST_F(Timers, ReleaseInsideItsOwnCallbackStopsATimerForGood) {
  auto timer = Start(10, true);
  sink->action = [&](NSdk::ITimer*) {
    timer.Reset();
    sink->action = nullptr;
    loop.RunFor(35ms);  // a message box would run a loop here; nobody owns the timer any more
  };
  loop.RunFor(100ms);
  EXPECT_THAT(sink->expiries, ElementsAre(10));
}

TEST_F(Timers, OthersGoOnWhileACallbackRunsALoopOfItsOwn) {
  const auto slow = Start(10, false);
  sink->action = [&](NSdk::ITimer*) {
    sink->action = nullptr;
    loop.RunFor(25ms);
  };
  const auto fast = Start(15, true);
  loop.RunFor(20ms);
  EXPECT_THAT(sink->expiries, ElementsAre(10, 15, 30));
}

TEST_F(Timers, EqualDeadlinesExpireInTheOrderOfStarting) {
  auto second = NRuntime::Make<Sink>(loop);
  std::string order;
  sink->action = [&](NSdk::ITimer*) { order += 'a'; };
  second->action = [&](NSdk::ITimer*) { order += 'b'; };
  const auto b = queue.CreateTimer(second.Get());
  b->Start(10, true);
  const auto a = Start(10, true);
  loop.RunFor(30ms);
  EXPECT_EQ(order, "bababa");
}

TEST_F(Timers, ATimerThatOutlivesItsQueueIsSilent) {
  ComPtr<NSdk::ITimer> kept;
  {
    NRuntime::TimerQueue shortLived(loop);
    kept = shortLived.CreateTimer(sink.Get());
    kept->Start(10, true);
  }
  loop.RunFor(50ms);
  EXPECT_EQ(kept->Start(10, true), E_FAIL);
  EXPECT_EQ(kept->Stop(), S_OK);
  EXPECT_THAT(sink->expiries, IsEmpty());
}

// The real alarm: never early, whatever the system's sleep does, and finer than the 10 ms of a window timer.
TEST(AsioLoop, AlarmsComeInTimeAndNeverEarly) {
  NRuntime::AsioLoop loop;
  std::vector<Time> late;
  Time deadline = loop.Now() + 2ms;
  std::unique_ptr<NRuntime::Alarm> alarm = loop.MakeAlarm([&] {
    late.push_back(loop.Now() - deadline);
    if (late.size() == 100) return loop.Stop();
    alarm->SetFor(deadline = loop.Now() + 2ms);
  });
  alarm->SetFor(deadline);
  loop.Run();
  std::sort(late.begin(), late.end());
  EXPECT_GE(late.front(), 0ns);
  EXPECT_LT(late[50], 3ms);
}

TEST(AsioLoop, ACancelledOrMovedAlarmDoesNotFireForItsOldDeadline) {
  NRuntime::AsioLoop loop;
  int fired = 0;
  const auto cancelled = loop.MakeAlarm([&] { fired += 100; });
  const auto moved = loop.MakeAlarm([&] { ++fired; });
  const auto end = loop.MakeAlarm([&] { loop.Stop(); });
  const Time now = loop.Now();
  cancelled->SetFor(now);
  moved->SetFor(now);
  end->SetFor(now + 30ms);
  cancelled->Cancel();
  moved->SetFor(now + 10ms);
  loop.Run();
  EXPECT_EQ(fired, 1);
}

}  // namespace
