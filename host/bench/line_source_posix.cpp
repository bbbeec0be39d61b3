#include <asio/posix/stream_descriptor.hpp>

#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <utility>

#include "host/bench/line_source.h"

namespace NBench {
namespace {

// Waits through the loop. Of what cannot be waited for, a file above all, the next bytes are always there.
class PipeSource final : public LineSource {
 public:
  PipeSource(NRuntime::AsioLoop& loop, Wishes& wishes)
      : mLoop(loop), mWishes(wishes), mInput(loop.Context(), dup(STDIN_FILENO)) {}

  std::optional<std::string> Next() override {
    for (;;) {
      if (mWishes.terminated || mWishes.interrupted) return std::nullopt;
      if (auto line = TakeLine(mText)) return line;
      if (mEnded) return mText.empty() ? std::nullopt : std::optional(std::exchange(mText, {}));
      Wait();
      if (!mWaiting) Read();
    }
  }

 private:
  void Wait() {
    if (!std::exchange(mWaiting, true)) {
      mInput.async_wait(asio::posix::stream_descriptor::wait_read, [this](const std::error_code& error) {
        if (error == asio::error::operation_aborted) return;  // this is gone
        mWaiting = false;
        mLoop.Stop();
      });
    }
    mLoop.Run();
  }

  void Read() {
    char bytes[4096];
    const ssize_t count = read(mInput.native_handle(), bytes, sizeof bytes);
    if (count > 0) {
      mText.append(bytes, static_cast<std::size_t>(count));
    } else {
      mEnded = count == 0 || (errno != EINTR && errno != EAGAIN);
    }
    if (mText.size() > kLongestLine && mText.find('\n') == std::string::npos) {
      throw std::runtime_error("a line of the input is too long");
    }
  }

  NRuntime::AsioLoop& mLoop;
  Wishes& mWishes;
  asio::posix::stream_descriptor mInput;
  std::string mText;
  bool mWaiting = false;
  bool mEnded = false;
};

}  // namespace

std::unique_ptr<LineSource> MakePipeSource(NRuntime::AsioLoop& loop, Wishes& wishes) {
  return std::make_unique<PipeSource>(loop, wishes);
}

}  // namespace NBench
