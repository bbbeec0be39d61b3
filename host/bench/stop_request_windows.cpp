#include <asio/post.hpp>

#include <windows.h>

#include <functional>
#include <mutex>
#include <utility>

#include "host/bench/stop_request.h"

namespace NBench {

struct StopRequest::State {
  NRuntime::AsioLoop& loop;
  NRuntime::Task task;
  bool asked = false;
};

namespace {

std::mutex gMutex;                      // the system calls the handler on a thread of its own
std::function<bool()> gAsk;             // empty: nobody is asked any more
constexpr DWORD kTimeToEnd_ms = 10000;  // the system's own limit is shorter

BOOL WINAPI Handle(DWORD event) {
  {
    const std::lock_guard lock(gMutex);
    if (!gAsk || !gAsk()) return FALSE;
  }
  // A console that closes ends the program when the handler returns.
  if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) Sleep(kTimeToEnd_ms);
  return TRUE;
}

}  // namespace

StopRequest::StopRequest(NRuntime::AsioLoop& loop, NRuntime::Task task)
    : mState(new State{loop, std::move(task)}) {
  {
    const std::lock_guard lock(gMutex);
    gAsk = [state = mState.get()] {
      if (std::exchange(state->asked, true)) return false;
      asio::post(state->loop.Context(), state->task);
      return true;
    };
  }
  SetConsoleCtrlHandler(Handle, TRUE);
}

StopRequest::~StopRequest() {
  SetConsoleCtrlHandler(Handle, FALSE);
  const std::lock_guard lock(gMutex);
  gAsk = nullptr;
}

}  // namespace NBench
