#pragma once

#include <deque>
#include <map>
#include <memory>

#include "host/runtime/loop.h"

namespace NRuntime {

/// Time that passes as fast as the work allows: it stands still while something is posted, and then jumps to
/// the next deadline.
class FastTime final : public Loop {
 public:
  explicit FastTime(Time start) : mNow(start) {}

  Time Now() const override { return mNow; }
  void Post(Task task) override { mPosted.push_back(std::move(task)); }
  /// Alarms with the same deadline run in the order in which they were set.
  std::unique_ptr<Alarm> MakeAlarm(Task task) override;

  /// Runs the next task or, when none is posted, the alarm that is due next. False: there is nothing to do.
  bool RunOne();

 private:
  struct Place {
    Time deadline{};
    std::uint64_t order = 0;
    auto operator<=>(const Place&) const = default;
  };
  struct Entry {
    Task task;
    Place place;
    bool isSet = false;
  };
  class FastAlarm;

  void Remove(Entry& entry);

  Time mNow;
  std::uint64_t mNextOrder = 0;
  std::deque<Task> mPosted;
  std::map<Place, std::shared_ptr<Entry>> mDue;
};

}  // namespace NRuntime
