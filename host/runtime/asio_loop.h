#pragma once

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>

#include "host/runtime/io_loop.h"

namespace NRuntime {

/// The loop of a program without windows: waits and runs on one thread.
class AsioLoop final : public IoLoop {
 public:
  /// Runs until Stop(), on the caller's thread. What a task throws comes out here.
  void Run();
  /// Makes Run() return after the task at hand. May be called from any thread.
  void Stop() { mContext.stop(); }

  asio::any_io_executor Executor() override { return mContext.get_executor(); }
  asio::io_context& Context() { return mContext; }

 private:
  void PostForRealTime(Task task) override;

  asio::io_context mContext{1};
  asio::executor_work_guard<asio::io_context::executor_type> mWork{mContext.get_executor()};
};

}  // namespace NRuntime
