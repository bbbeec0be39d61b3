#include <asio/post.hpp>

#include <windows.h>

#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <thread>
#include <utility>

#include "host/bench/console.h"
#include "host/bench/line_source.h"
#include "host/runtime/text.h"

namespace NBench {
namespace {

constexpr char kPrompt[] = "ostrel> ";

// A thread reads one line whenever one is wanted; nothing else waits for a console or a pipe. It may be
// waiting when the program ends, so it shares what it needs.
struct Reader {
  std::mutex mutex;
  std::condition_variable wanted;
  bool want = false;
  bool ready = false;
  std::optional<std::string> line;
  NRuntime::AsioLoop* loop = nullptr;  // null: the source is gone
};

bool IsConsole(HANDLE input) {
  DWORD mode = 0;
  return GetConsoleMode(input, &mode) != 0;
}

// False: the end of the input.
bool ReadSome(HANDLE input, bool console, std::string& text) {
  DWORD count = 0;
  if (console) {
    wchar_t units[512];
    SetLastError(0);
    if (!ReadConsoleW(input, units, static_cast<DWORD>(std::size(units)), &count, nullptr)) return false;
    if (count == 0) return GetLastError() == ERROR_OPERATION_ABORTED;  // Ctrl+C
    const std::string part = NRuntime::ToUtf8(std::wstring_view(units, count));
    if (part.front() == '\x1A') return false;  // Ctrl+Z
    text += part;
    return true;
  }
  char bytes[4096];
  if (!ReadFile(input, bytes, sizeof bytes, &count, nullptr) || count == 0) return false;
  text.append(bytes, count);
  return true;
}

std::optional<std::string> ReadLine(HANDLE input, bool console, std::string& text) {
  for (;;) {
    if (auto line = TakeLine(text)) return line;
    if (text.size() <= kLongestLine && ReadSome(input, console, text)) continue;
    if (text.empty()) return std::nullopt;
    return std::exchange(text, {});
  }
}

void ReadLines(const std::shared_ptr<Reader>& reader) {
  const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
  const bool console = IsConsole(input);
  std::string text;
  std::unique_lock lock(reader->mutex);
  for (;;) {
    reader->wanted.wait(lock, [&] { return reader->want || !reader->loop; });
    if (!reader->loop) return;
    reader->want = false;
    lock.unlock();
    auto line = ReadLine(input, console, text);
    lock.lock();
    reader->line = std::move(line);
    reader->ready = true;
    if (reader->loop) asio::post(reader->loop->Context(), [loop = reader->loop] { loop->Stop(); });
  }
}

class StandardInput final : public LineSource {
 public:
  StandardInput(NRuntime::AsioLoop& loop, Wishes& wishes, bool prompts)
      : mLoop(loop), mWishes(wishes), mPrompts(prompts) {
    mReader->loop = &loop;
    std::thread(ReadLines, mReader).detach();
  }
  ~StandardInput() override {
    const std::lock_guard lock(mReader->mutex);
    mReader->loop = nullptr;
    mReader->wanted.notify_one();
  }

  std::optional<std::string> Next() override {
    Prompt();
    {
      const std::lock_guard lock(mReader->mutex);
      mReader->want = true;
      mReader->wanted.notify_one();
    }
    mEditing = mPrompts;
    for (;;) {
      if (mWishes.terminated) return std::nullopt;
      if (mWishes.interrupted && !mPrompts) return std::nullopt;
      if (std::exchange(mWishes.interrupted, false)) Prompt();
      {
        const std::lock_guard lock(mReader->mutex);
        if (std::exchange(mReader->ready, false)) {
          mEditing = false;
          return mReader->line;
        }
      }
      mLoop.Run();
    }
  }

  // The console keeps what was typed, and shows it again with the next key that changes it.
  void MakeRoom() override {
    if (!mEditing || std::exchange(mHidden, true)) return;
    Write("\r\x1B[K");
    mLoop.Post([this, reader = mReader] {
      const std::lock_guard lock(reader->mutex);
      if (!reader->loop) return;
      mHidden = false;
      if (mEditing) Write(kPrompt);
    });
  }

 private:
  void Prompt() {
    if (mPrompts) Write(kPrompt);
  }
  static void Write(const char* text) {
    std::fputs(text, stdout);
    std::fflush(stdout);
  }

  NRuntime::AsioLoop& mLoop;
  Wishes& mWishes;
  const bool mPrompts;
  bool mEditing = false;
  bool mHidden = false;
  std::shared_ptr<Reader> mReader = std::make_shared<Reader>();
};

}  // namespace

// The console edits lines, keeps a history of its own and completes nothing.
std::unique_ptr<LineSource> MakeTerminalSource(NRuntime::AsioLoop& loop, Wishes& wishes, Completer,
                                               const std::filesystem::path&) {
  return std::make_unique<StandardInput>(loop, wishes, true);
}

std::unique_ptr<LineSource> MakePipeSource(NRuntime::AsioLoop& loop, Wishes& wishes) {
  return std::make_unique<StandardInput>(loop, wishes, false);
}

std::filesystem::path HistoryFile() { return {}; }

}  // namespace NBench
