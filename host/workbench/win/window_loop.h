#pragma once

#include <functional>
#include <memory>
#include <string>

#include "host/runtime/io_loop.h"

namespace NWorkbench {

/// The loop of a program with windows. A thread of its own waits for sockets and deadlines; what they report
/// runs on the thread that made the loop, through a hidden window: also while a menu, a dialog or a message
/// box is open. Tasks may therefore run inside one another.
class WindowLoop final : public NRuntime::IoLoop {
 public:
  /// `onFault` gets the words of what a task throws, on the loop's thread.
  explicit WindowLoop(std::function<void(const std::string&)> onFault);
  ~WindowLoop() override;
  WindowLoop(const WindowLoop&) = delete;
  WindowLoop& operator=(const WindowLoop&) = delete;

  asio::any_io_executor Executor() override;
  void SetFlooded(bool isFlooded) override;

  /// Does one of its tasks run at this moment? The loop must then not be destroyed.
  bool IsInTask() const;

 private:
  class Core;

  void PostForRealTime(NRuntime::Task task) override;
  NRuntime::Time RoundedUp(NRuntime::Time deadline) const override;
  void OnFastWork() override;

  std::unique_ptr<Core> mCore;
};

}  // namespace NWorkbench
