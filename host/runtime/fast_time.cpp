#include "host/runtime/fast_time.h"

#include <algorithm>

namespace NRuntime {

class FastTime::FastAlarm final : public Alarm {
 public:
  FastAlarm(FastTime& time, Task task) : mTime(time), mEntry(std::make_shared<Entry>()) {
    mEntry->task = std::move(task);
  }
  ~FastAlarm() override { mTime.Remove(*mEntry); }

  void SetFor(Time deadline) override {
    mTime.Remove(*mEntry);
    mEntry->place = {std::max(deadline, mTime.mNow), mTime.mNextOrder++};
    mEntry->isSet = true;
    mTime.mDue.emplace(mEntry->place, mEntry);
  }

  void Cancel() override { mTime.Remove(*mEntry); }

 private:
  FastTime& mTime;
  std::shared_ptr<Entry> mEntry;  // shared with the alarm's turn, which may destroy the alarm
};

std::unique_ptr<Alarm> FastTime::MakeAlarm(Task task) {
  return std::make_unique<FastAlarm>(*this, std::move(task));
}

void FastTime::Remove(Entry& entry) {
  if (!entry.isSet) return;
  entry.isSet = false;
  mDue.erase(entry.place);
}

bool FastTime::RunOne() {
  if (!mPosted.empty()) {
    const Task task = std::move(mPosted.front());
    mPosted.pop_front();
    task();
    return true;
  }
  if (mDue.empty()) return false;
  const std::shared_ptr<Entry> entry = mDue.begin()->second;
  mNow = entry->place.deadline;
  Remove(*entry);
  entry->task();
  return true;
}

}  // namespace NRuntime
