#include "host/runtime/asio_loop.h"

#include <asio/post.hpp>

namespace NRuntime {
namespace {

// Between two looks at sockets and signals, each of which costs as much as some hundred frames of a log.
constexpr int kStepsAtOnce = 256;

}  // namespace

// Which clock an alarm goes by is known when it is set for the first time.
class AsioLoop::EitherAlarm final : public Alarm {
 public:
  EitherAlarm(AsioLoop& loop, Task task) : mLoop(loop), mTask(std::move(task)) {}

  void SetFor(Time deadline) override {
    if (!mAlarm) {
      mAlarm = mLoop.mFastTime ? mLoop.mFastTime->MakeAlarm(std::move(mTask))
                               : MakePreciseAlarm(mLoop, std::move(mTask));
    }
    mAlarm->SetFor(deadline);
  }

  void Cancel() override {
    if (mAlarm) mAlarm->Cancel();
  }

 private:
  AsioLoop& mLoop;
  Task mTask;
  std::unique_ptr<Alarm> mAlarm;
};

Time AsioLoop::Now() const {
  if (mFastTime) return mFastTime->Now();
  return std::chrono::duration_cast<Time>(std::chrono::steady_clock::now().time_since_epoch());
}

void AsioLoop::Post(Task task) {
  if (mFastTime) {
    mFastTime->Post(std::move(task));
  } else {
    asio::post(mContext, std::move(task));
  }
}

std::unique_ptr<Alarm> AsioLoop::MakeAlarm(Task task) {
  return std::make_unique<EitherAlarm>(*this, std::move(task));
}

void AsioLoop::SkipWaits() {
  if (!mFastTime) mFastTime = std::make_unique<FastTime>(Now());
}

void AsioLoop::Run() {
  mContext.restart();
  if (!mFastTime) {
    mContext.run();
    return;
  }
  while (!mContext.stopped()) {
    mContext.poll();
    int steps = 0;
    while (steps < kStepsAtOnce && !mContext.stopped() && mFastTime->RunOne()) ++steps;
    if (steps == 0 && !mContext.stopped()) mContext.run_one();
  }
}

}  // namespace NRuntime
