// asio's header comes first: it brings the socket headers, which must precede those of Windows.
#include "host/workbench/win/window_loop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <thread>
#include <utility>
#include <vector>

#include "tests/windows/window_driver.h"

namespace {

using namespace std::chrono_literals;

class LoopOfWindows : public testing::Test {
 protected:
  // How late an alarm comes that is set from task to task.
  std::vector<NRuntime::Time> LatenessOf(std::size_t times, NRuntime::Time period) {
    std::vector<NRuntime::Time> late;
    NRuntime::Time due = loop.Now();
    std::unique_ptr<NRuntime::Alarm> alarm;
    alarm = loop.MakeAlarm([&] {
      late.push_back(loop.Now() - due);
      if (late.size() < times) alarm->SetFor(due += period);
    });
    alarm->SetFor(due);
    EXPECT_TRUE(NTest::PumpUntil([&] { return late.size() == times; }, 10000)) << late.size();
    std::sort(late.begin(), late.end());
    return late;
  }

  NWorkbench::WindowLoop loop{[](const std::string& fault) { ADD_FAILURE() << fault; }};
};

TEST_F(LoopOfWindows, TakesWhatComesInAFloodAFewMillisecondsLater) {
  loop.SetFlooded(true);
  const auto begin = loop.Now();
  LatenessOf(50, 0ms);
  EXPECT_GE(loop.Now() - begin, 49 * 4ms) << "each is an event of its own";
  EXPECT_LT(LatenessOf(50, 10ms)[25], 20ms) << "deadlines stay absolute";
}

// A window that is given what is typed.
class TypedWindow {
 public:
  TypedWindow() {
    SetForegroundWindow(mWindow);
    SetFocus(mWindow);
  }
  ~TypedWindow() { DestroyWindow(mWindow); }
  TypedWindow(const TypedWindow&) = delete;
  TypedWindow& operator=(const TypedWindow&) = delete;

  // Down and up in turn.
  void Press() {
    INPUT input = {};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = VK_F24;  // means nothing to anybody
    input.ki.dwFlags = mIsDown ? KEYEVENTF_KEYUP : 0;
    mIsDown = !mIsDown;
    SendInput(1, &input, sizeof input);
  }

 private:
  HWND mWindow =
      CreateWindowW(L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 50, 50, nullptr, nullptr, nullptr, nullptr);
  bool mIsDown = false;
};

bool HasKeyCome() {
  MSG message;
  if (!PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) return false;
  DispatchMessageW(&message);
  return message.message == WM_KEYDOWN || message.message == WM_KEYUP;
}

// Tasks without an end, as a bus brings them that is too fast for the machine; keys are pressed meanwhile.
TEST_F(LoopOfWindows, AKeyWaitsForTheRestOfATurnOnly) {
  constexpr std::size_t kKeys = 21;
  TypedWindow window;
  bool goesOn = true, isPressed = false;
  NRuntime::Time pressed{};
  std::function<void()> task = [&] {
    std::this_thread::sleep_for(1ms);
    if (!std::exchange(isPressed, true)) {
      pressed = loop.Now();
      window.Press();
    }
    if (goesOn) loop.Post(task);
  };
  loop.Post(task);
  std::vector<NRuntime::Time> waits;
  const auto end = loop.Now() + 10s;
  while (waits.size() < kKeys && loop.Now() < end) {
    if (!HasKeyCome()) continue;
    waits.push_back(loop.Now() - pressed);
    isPressed = false;
  }
  goesOn = false;
  NTest::PumpFor(50);
  ASSERT_EQ(waits.size(), kKeys);
  std::sort(waits.begin(), waits.end());
  std::printf("a key waited %.1f ms, at most %.1f ms\n", static_cast<double>(waits[kKeys / 2].count()) / 1e6,
              static_cast<double>(waits.back().count()) / 1e6);
  EXPECT_LT(waits[kKeys / 2], 15ms) << "a turn takes 8 ms";
}

}  // namespace
