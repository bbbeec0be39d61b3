#include "host/runtime/asio_loop.h"

#include <asio/post.hpp>

namespace NRuntime {
namespace {

// Between two looks at sockets and signals, each of which costs as much as some hundred frames of a log.
constexpr int kStepsAtOnce = 256;

}  // namespace

void AsioLoop::PostForRealTime(Task task) { asio::post(mContext, std::move(task)); }

void AsioLoop::Run() {
  mContext.restart();
  FastTime* const fast = Fast();
  if (!fast) {
    mContext.run();
    return;
  }
  while (!mContext.stopped()) {
    mContext.poll();
    int steps = 0;
    while (steps < kStepsAtOnce && !mContext.stopped() && fast->RunOne()) ++steps;
    if (steps == 0 && !mContext.stopped()) mContext.run_one();
  }
}

}  // namespace NRuntime
