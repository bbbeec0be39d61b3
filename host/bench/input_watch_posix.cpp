#include <sys/epoll.h>
#include <unistd.h>

#include <utility>

#include "host/bench/input_watch.h"

namespace NBench {
namespace {

// Files cannot be waited for.
bool Watch(int events) {
  epoll_event wanted = {};
  wanted.events = EPOLLIN;
  return epoll_ctl(events, EPOLL_CTL_ADD, STDIN_FILENO, &wanted) == 0;
}

}  // namespace

InputWatch::InputWatch(NRuntime::AsioLoop& loop)
    : mLoop(loop),
      mEvents(loop.Context(), epoll_create1(EPOLL_CLOEXEC)),
      mCanWait(Watch(mEvents.native_handle())) {}

bool InputWatch::Run() {
  if (!mCanWait) {
    mLoop.Post([&loop = mLoop] { loop.Stop(); });
  } else if (!std::exchange(mWaiting, true)) {
    mEvents.async_wait(asio::posix::stream_descriptor::wait_read, [this](const std::error_code& error) {
      if (error == asio::error::operation_aborted) return;  // this is gone
      mWaiting = false;
      mLoop.Stop();
    });
  }
  mLoop.Run();
  return !mWaiting;
}

}  // namespace NBench
