#include <asio/post.hpp>

#include <windows.h>

#include <mutex>

#include "host/bench/interrupts.h"

namespace NBench {

struct Interrupts::State {
  NRuntime::AsioLoop& loop;
  Listener listener;
};

namespace {

std::mutex gMutex;                            // the system calls the handler on a thread of its own
std::function<void(Interrupts::Kind)> gTell;  // empty: nobody is told any more
constexpr DWORD kTimeToEnd_ms = 10000;        // the system's own limit is shorter

BOOL WINAPI Handler(DWORD event) {
  const bool interrupt = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT;
  {
    const std::lock_guard lock(gMutex);
    if (!gTell) return FALSE;
    gTell(interrupt ? Interrupts::Kind::Interrupt : Interrupts::Kind::Terminate);
  }
  // A console that closes ends the program when the handler returns.
  if (!interrupt) Sleep(kTimeToEnd_ms);
  return TRUE;
}

}  // namespace

Interrupts::Interrupts(NRuntime::AsioLoop& loop, Listener listener)
    : mState(new State{loop, std::move(listener)}) {
  {
    const std::lock_guard lock(gMutex);
    gTell = [state = mState.get()](Kind kind) {
      asio::post(state->loop.Context(), [state, kind] { state->listener(kind); });
    };
  }
  SetConsoleCtrlHandler(Handler, TRUE);
}

Interrupts::~Interrupts() {
  SetConsoleCtrlHandler(Handler, FALSE);
  const std::lock_guard lock(gMutex);
  gTell = nullptr;
}

}  // namespace NBench
