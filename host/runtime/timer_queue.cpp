#include "host/runtime/timer_queue.h"

#include <algorithm>
#include <map>
#include <optional>

namespace NRuntime {
namespace {

constexpr Time kMillisecond = std::chrono::milliseconds(1);

// Place in the schedule: by deadline, and among equal ones by the order of starting.
struct Place {
  Time deadline{};
  std::uint64_t order = 0;
  auto operator<=>(const Place&) const = default;
};

// Counts a delivery for as long as it lasts.
class Delivery {
 public:
  explicit Delivery(ULONG& count) : mCount(count) { ++mCount; }
  ~Delivery() { --mCount; }
  Delivery(const Delivery&) = delete;
  Delivery& operator=(const Delivery&) = delete;

 private:
  ULONG& mCount;
};

}  // namespace

// What the timers share. They hold it too, so that a timer which a block has kept finds it closed, not gone.
struct TimerQueue::Schedule : std::enable_shared_from_this<Schedule> {
  explicit Schedule(Loop& ownLoop) : loop(&ownLoop), alarm(ownLoop.MakeAlarm([this] { RunDue(); })) {}

  void Add(Timer& timer, Time deadline);
  /// Moves a timer that is in the schedule, without allocating.
  void Move(Timer& timer, Time deadline);
  void Remove(Timer& timer);
  void RunDue();
  void SetAlarm();

  Loop* loop;  // null once the queue is closed
  std::unique_ptr<Alarm> alarm;
  std::map<Place, Timer*> due;
  std::uint64_t nextOrder = 0;
  std::optional<Time> alarmTime;
  std::optional<Time> round;  // its start, while what is due is being run
};

class TimerQueue::Timer final : public Implements<NSdk::ITimer> {
 public:
  Timer(std::shared_ptr<Schedule> schedule, NSdk::ITimerSink* sink)
      : mSchedule(std::move(schedule)), mSink(sink) {}

  HRESULT STDMETHODCALLTYPE Stop() override {
    if (mRunning) mSchedule->Remove(*this);
    mRunning = false;
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE Start(std::uint32_t period_ms, std::uint32_t periodic) override {
    if (!mSchedule->loop) return E_FAIL;
    Stop();
    mStarted = mSchedule->loop->Now();
    const Time first = period_ms * kMillisecond;
    mPeriod = periodic ? std::max(first, kMillisecond) : Time::zero();
    mRunning = true;
    mSchedule->Add(*this, mStarted + (periodic ? mPeriod : first));
    return S_OK;
  }

  // The queue holds a reference during a delivery; without that one the timer is stopped the moment its owner
  // lets go of it, also inside the callback.
  ULONG STDMETHODCALLTYPE Release() override {
    if (References() - 1 == mDeliveries) Stop();
    return Implements::Release();
  }

  void Expire(Time now) {
    if (mPeriod == Time::zero()) {
      Stop();
    } else {
      mSchedule->Move(*this, NextDeadline(now));
    }
    const ComPtr<Timer> kept(this);
    const Delivery delivery(mDeliveries);
    mSink->OnTimer(this);
  }

  Place place;

 private:
  ~Timer() override { Stop(); }

  // The first multiple of the period that still lies ahead: whatever was missed is left out.
  Time NextDeadline(Time now) const { return mStarted + ((now - mStarted) / mPeriod + 1) * mPeriod; }

  std::shared_ptr<Schedule> mSchedule;
  NSdk::ITimerSink* mSink;
  Time mStarted{};
  Time mPeriod{};  // zero: fires once
  bool mRunning = false;
  ULONG mDeliveries = 0;
};

void TimerQueue::Schedule::Add(Timer& timer, Time deadline) {
  timer.place = {deadline, nextOrder++};
  due.emplace(timer.place, &timer);
  SetAlarm();
}

void TimerQueue::Schedule::Move(Timer& timer, Time deadline) {
  auto node = due.extract(timer.place);
  timer.place = {deadline, nextOrder++};
  node.key() = timer.place;
  due.insert(std::move(node));
  SetAlarm();
}

void TimerQueue::Schedule::Remove(Timer& timer) {
  due.erase(timer.place);
  SetAlarm();
}

// Runs what is due now. Timers that callbacks start wait for the next round, however short their period, so
// that other work of the loop gets its turn.
void TimerQueue::Schedule::RunDue() {
  const auto kept = shared_from_this();
  alarmTime.reset();
  const Place limit = {loop->Now(), nextOrder};
  round = limit.deadline;
  while (loop && !due.empty() && due.begin()->first < limit) due.begin()->second->Expire(loop->Now());
  round.reset();
  SetAlarm();
}

// Setting an alarm is a call of the system. Within a round all that is due has the same one, which is there
// for the callback that lets the loop run inside it.
void TimerQueue::Schedule::SetAlarm() {
  if (!loop) return;
  if (due.empty()) {
    if (alarmTime) alarm->Cancel();
    alarmTime.reset();
    return;
  }
  const Time next = due.begin()->first.deadline;
  const Time wanted = round ? std::max(next, *round) : next;
  if (alarmTime == wanted) return;
  alarmTime = wanted;
  alarm->SetFor(wanted);
}

TimerQueue::TimerQueue(Loop& loop) : mSchedule(std::make_shared<Schedule>(loop)) {}

TimerQueue::~TimerQueue() { Close(); }

ComPtr<NSdk::ITimer> TimerQueue::CreateTimer(NSdk::ITimerSink* sink) {
  return ComPtr<NSdk::ITimer>::Own(new Timer(mSchedule, sink));
}

void TimerQueue::Close() {
  while (!mSchedule->due.empty()) mSchedule->due.begin()->second->Stop();
  mSchedule->alarm.reset();
  mSchedule->loop = nullptr;
}

}  // namespace NRuntime
