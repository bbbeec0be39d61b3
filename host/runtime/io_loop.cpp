#include "host/runtime/io_loop.h"

namespace NRuntime {

// Which clock an alarm goes by is known when it is set for the first time.
class IoLoop::EitherAlarm final : public Alarm {
 public:
  EitherAlarm(IoLoop& loop, Task task) : mLoop(loop), mTask(std::move(task)) {}

  void SetFor(Time deadline) override {
    if (!mAlarm) {
      mAlarm = mLoop.mFastTime ? mLoop.mFastTime->MakeAlarm(std::move(mTask))
                               : MakePreciseAlarm(mLoop, std::move(mTask));
    }
    mAlarm->SetFor(mLoop.mFastTime ? deadline : mLoop.RoundedUp(deadline));
    if (mLoop.mFastTime) mLoop.OnFastWork();
  }

  void Cancel() override {
    if (mAlarm) mAlarm->Cancel();
  }

 private:
  IoLoop& mLoop;
  Task mTask;
  std::unique_ptr<Alarm> mAlarm;
};

Time IoLoop::Now() const {
  if (mFastTime) return mFastTime->Now();
  return std::chrono::duration_cast<Time>(std::chrono::steady_clock::now().time_since_epoch());
}

void IoLoop::Post(Task task) {
  if (!mFastTime) return PostForRealTime(std::move(task));
  mFastTime->Post(std::move(task));
  OnFastWork();
}

std::unique_ptr<Alarm> IoLoop::MakeAlarm(Task task) {
  return std::make_unique<EitherAlarm>(*this, std::move(task));
}

void IoLoop::SkipWaits() {
  if (!mFastTime) mFastTime = std::make_unique<FastTime>(Now());
}

}  // namespace NRuntime
