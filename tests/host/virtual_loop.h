#pragma once
// A loop whose time passes only when a test says so.

#include <algorithm>
#include <deque>
#include <vector>

#include "host/runtime/loop.h"

namespace NTest {

class VirtualLoop final : public NRuntime::Loop {
 public:
  NRuntime::Time Now() const override { return mNow; }
  void Post(NRuntime::Task task) override { mPosted.push_back(std::move(task)); }
  std::unique_ptr<NRuntime::Alarm> MakeAlarm(NRuntime::Task task) override {
    return std::make_unique<VirtualAlarm>(*this, std::move(task));
  }

  /// Runs what was posted and what is due until this much time has passed.
  void RunFor(NRuntime::Time duration) {
    const NRuntime::Time end = mNow + duration;
    RunPosted();
    while (VirtualAlarm* next = Next(end)) {
      mNow = std::max(mNow, next->deadline);
      next->Fire();
      RunPosted();
    }
    mNow = std::max(mNow, end);
  }

  /// Time passes while something else keeps the thread: called from inside a callback, or to be late for it.
  void Block(NRuntime::Time duration) { mNow += duration; }

 private:
  struct VirtualAlarm final : NRuntime::Alarm {
    VirtualAlarm(VirtualLoop& ownLoop, NRuntime::Task ownTask) : loop(ownLoop), task(std::move(ownTask)) {
      loop.mAlarms.push_back(this);
    }
    ~VirtualAlarm() override { std::erase(loop.mAlarms, this); }
    void SetFor(NRuntime::Time time) override {
      deadline = time;
      set = true;
    }
    void Cancel() override { set = false; }
    void Fire() {
      set = false;
      const NRuntime::Task kept = task;
      kept();
    }

    VirtualLoop& loop;
    NRuntime::Task task;
    NRuntime::Time deadline{};
    bool set = false;
  };

  VirtualAlarm* Next(NRuntime::Time end) {
    VirtualAlarm* next = nullptr;
    for (VirtualAlarm* alarm : mAlarms) {
      if (alarm->set && alarm->deadline <= end && (!next || alarm->deadline < next->deadline)) next = alarm;
    }
    return next;
  }

  void RunPosted() {
    while (!mPosted.empty()) {
      const NRuntime::Task task = std::move(mPosted.front());
      mPosted.pop_front();
      task();
    }
  }

  NRuntime::Time mNow = std::chrono::hours(5);
  std::deque<NRuntime::Task> mPosted;
  std::vector<VirtualAlarm*> mAlarms;
};

}  // namespace NTest
