// asio's header comes first: it brings the socket headers, which must precede those of Windows.
#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/post.hpp>

#include "host/workbench/win/window_loop.h"

#include <windows.h>

#include <timeapi.h>

#include <atomic>
#include <deque>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <thread>

namespace NWorkbench {
namespace {

constexpr wchar_t kClassName[] = L"OstrelWorkbenchLoop";
constexpr UINT kRunTasks = WM_APP;
constexpr UINT_PTR kLaterTimer = 1;
// What is posted goes before input and painting: after this long they get their turn.
constexpr std::chrono::milliseconds kLongestTurn{8};
// Input then gets a moment in which nothing is posted; painting takes longer and waits for several turns.
constexpr std::chrono::milliseconds kMoment{2};
constexpr std::chrono::milliseconds kLongestWait{20};
// To wake the window takes longer than to handle a frame.
constexpr std::chrono::milliseconds kFloodPause{4};

// A task as asio hands it over, which can be moved but not copied.
class Pending {
 public:
  virtual ~Pending() = default;
  virtual void Run() = 0;
};

template <class Function>
class PendingFunction final : public Pending {
 public:
  explicit PendingFunction(Function function) : mFunction(std::move(function)) {}
  void Run() override { mFunction(); }

 private:
  Function mFunction;
};

}  // namespace

// What the waiting thread and the window share.
class WindowLoop::Core {
 public:
  Core(WindowLoop& owner, std::function<void(const std::string&)> onFault);
  ~Core();

  asio::io_context& Context() { return mContext; }

  template <class Function>
  void Add(Function&& function) {
    auto pending =
        std::make_unique<PendingFunction<std::decay_t<Function>>>(std::forward<Function>(function));
    bool first = false;
    {
      const std::lock_guard lock(mMutex);
      first = mPending.empty();
      mPending.push_back(std::move(pending));
    }
    if (first) Wake();
  }

  void SetFlooded(bool isFlooded) { mIsFlooded = isFlooded; }

  void Wake() {
    if (!mWoken.exchange(true)) PostMessageW(mWindow, kRunTasks, 0, 0);
  }

  int depth = 0;  // tasks that run inside one another

 private:
  static LRESULT CALLBACK Receive(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  static HWND MakeReceiver();
  void WaitForEvents();
  std::unique_ptr<Pending> Take();
  bool RunOne();
  bool RunOneGuarded();
  bool HasPending();
  void RunTurn();
  bool GiveWay(bool more);
  void GiveMoment(bool more);
  void WaitForTimer();

  WindowLoop& mOwner;
  std::function<void(const std::string&)> mOnFault;
  asio::io_context mContext;
  asio::executor_work_guard<asio::io_context::executor_type> mWork{mContext.get_executor()};
  std::mutex mMutex;
  std::deque<std::unique_ptr<Pending>> mPending;
  std::atomic<bool> mWoken = false;
  std::atomic<bool> mIsFlooded = false;
  HWND mWindow = nullptr;
  std::optional<std::chrono::steady_clock::time_point> mWaitingSince;  // input or painting
  std::thread mThread;
};

namespace {

// Hands over to the window whatever asio completes. It refers to its queue without owning it, as an executor
// of an io_context does.
template <class Core>
struct WindowExecutor {
  Core* core;

  static constexpr asio::execution::blocking_t query(asio::execution::blocking_t) noexcept {
    return asio::execution::blocking.never;
  }
  asio::execution_context& query(asio::execution::context_t) const noexcept { return core->Context(); }
  WindowExecutor require(asio::execution::blocking_t::never_t) const noexcept { return *this; }

  template <class Function>
  void execute(Function&& function) const {
    core->Add(std::forward<Function>(function));
  }

  bool operator==(const WindowExecutor&) const noexcept = default;
};

}  // namespace

HWND WindowLoop::Core::MakeReceiver() {
  WNDCLASSW description = {};
  description.lpfnWndProc = Receive;
  description.hInstance = GetModuleHandleW(nullptr);
  description.lpszClassName = kClassName;
  RegisterClassW(&description);  // again for each loop: the system refuses that
  return CreateWindowExW(0, kClassName, nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, description.hInstance,
                         nullptr);
}

WindowLoop::Core::Core(WindowLoop& owner, std::function<void(const std::string&)> onFault)
    : mOwner(owner), mOnFault(std::move(onFault)), mWindow(MakeReceiver()) {
  if (!mWindow) throw std::runtime_error("the window that receives the events of buses cannot be made");
  SetWindowLongPtrW(mWindow, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  timeBeginPeriod(1);  // the scheduler's tick is longer than the pauses unless it is asked for
  mThread = std::thread([this] { WaitForEvents(); });
}

WindowLoop::Core::~Core() {
  mContext.stop();
  mThread.join();
  timeEndPeriod(1);
  SetWindowLongPtrW(mWindow, GWLP_USERDATA, 0);
  DestroyWindow(mWindow);
}

void WindowLoop::Core::WaitForEvents() {
  while (mContext.run_one() != 0) {
    mContext.poll();
    if (mIsFlooded) std::this_thread::sleep_for(kFloodPause);
  }
}

LRESULT CALLBACK WindowLoop::Core::Receive(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* const core = reinterpret_cast<Core*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  const bool isLater = message == WM_TIMER && wParam == kLaterTimer;
  if (!core || (message != kRunTasks && !isLater)) return DefWindowProcW(window, message, wParam, lParam);
  if (isLater) KillTimer(window, kLaterTimer);
  core->RunTurn();
  return 0;
}

bool WindowLoop::Core::HasPending() {
  const std::lock_guard lock(mMutex);
  return !mPending.empty();
}

std::unique_ptr<Pending> WindowLoop::Core::Take() {
  const std::lock_guard lock(mMutex);
  if (mPending.empty()) return nullptr;
  auto pending = std::move(mPending.front());
  mPending.pop_front();
  return pending;
}

bool WindowLoop::Core::RunOne() {
  if (const auto pending = Take()) {
    pending->Run();
    return true;
  }
  return mOwner.Fast() && mOwner.Fast()->RunOne();
}

// Nothing may be thrown through the window procedure.
bool WindowLoop::Core::RunOneGuarded() {
  try {
    return RunOne();
  } catch (const std::exception& error) {
    mOnFault(error.what());
    return true;
  }
}

void WindowLoop::Core::RunTurn() {
  mWoken = false;
  ++depth;
  const auto end = std::chrono::steady_clock::now() + kLongestTurn;
  bool more = true;
  while (more && std::chrono::steady_clock::now() < end) more = RunOneGuarded();
  --depth;
  if (!GiveWay(more) && more) Wake();
}

// True: the user waits, and what is left comes later.
bool WindowLoop::Core::GiveWay(bool more) {
  const UINT waiting = HIWORD(GetQueueStatus(QS_INPUT | QS_PAINT));
  if (waiting == 0) {
    mWaitingSince.reset();
    return false;
  }
  const auto now = std::chrono::steady_clock::now();
  if (!mWaitingSince) mWaitingSince = now;
  const bool isLong = now - *mWaitingSince >= kLongestWait;
  if (!isLong && (waiting & QS_INPUT) == 0) return false;
  mWoken = true;
  MSG posted;
  while (PeekMessageW(&posted, mWindow, kRunTasks, kRunTasks, PM_REMOVE)) continue;
  if (isLong) {
    WaitForTimer();
  } else {
    GiveMoment(more);
  }
  return true;
}

// A timer of the window lets all input and all painting go before it, but comes after 10 ms at the earliest.
void WindowLoop::Core::WaitForTimer() {
  mWaitingSince.reset();
  SetTimer(mWindow, kLaterTimer, USER_TIMER_MINIMUM, nullptr);
}

// The thread that waits for events waits for this as well.
void WindowLoop::Core::GiveMoment(bool more) {
  asio::post(mContext, [this, more] {
    std::this_thread::sleep_for(kMoment);
    mWoken = false;
    if (more || HasPending()) Wake();
  });
}

WindowLoop::WindowLoop(std::function<void(const std::string&)> onFault)
    : mCore(std::make_unique<Core>(*this, std::move(onFault))) {}

WindowLoop::~WindowLoop() = default;

asio::any_io_executor WindowLoop::Executor() { return WindowExecutor<Core>{mCore.get()}; }

void WindowLoop::SetFlooded(bool isFlooded) { mCore->SetFlooded(isFlooded); }

bool WindowLoop::IsInTask() const { return mCore->depth != 0; }

void WindowLoop::PostForRealTime(NRuntime::Task task) { mCore->Add(std::move(task)); }

// A busy bus would wake the window with every frame: what is due within a millisecond comes at its end.
NRuntime::Time WindowLoop::RoundedUp(NRuntime::Time deadline) const {
  return std::chrono::ceil<std::chrono::milliseconds>(deadline);
}

void WindowLoop::OnFastWork() { mCore->Wake(); }

}  // namespace NWorkbench
