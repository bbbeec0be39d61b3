#include "host/runtime/asio_loop.h"

#include <asio/post.hpp>

namespace NRuntime {

Time AsioLoop::Now() const {
  return std::chrono::duration_cast<Time>(std::chrono::steady_clock::now().time_since_epoch());
}

void AsioLoop::Post(Task task) { asio::post(mContext, std::move(task)); }

std::unique_ptr<Alarm> AsioLoop::MakeAlarm(Task task) { return MakePreciseAlarm(*this, std::move(task)); }

void AsioLoop::Run() {
  mContext.restart();
  mContext.run();
}

}  // namespace NRuntime
