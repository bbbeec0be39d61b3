#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <utility>

#include "host/bench/input_watch.h"
#include "host/bench/line_source.h"

namespace NBench {
namespace {

// Waits through the loop. Of what cannot be waited for, a file above all, the next bytes are always there.
class PipeSource final : public LineSource {
 public:
  PipeSource(NRuntime::AsioLoop& loop, Wishes& wishes) : mWishes(wishes), mInput(loop) {}

  std::optional<std::string> Next() override {
    for (;;) {
      if (mWishes.terminated || mWishes.interrupted) return std::nullopt;
      if (auto line = TakeLine(mText)) return line;
      if (mEnded) return mText.empty() ? std::nullopt : std::optional(std::exchange(mText, {}));
      if (mInput.Run()) Read();
    }
  }

 private:
  void Read() {
    char bytes[4096];
    const ssize_t count = read(STDIN_FILENO, bytes, sizeof bytes);
    if (count > 0) {
      mText.append(bytes, static_cast<std::size_t>(count));
    } else {
      mEnded = count == 0 || (errno != EINTR && errno != EAGAIN);
    }
    if (mText.size() > kLongestLine && mText.find('\n') == std::string::npos) {
      throw std::runtime_error("a line of the input is too long");
    }
  }

  Wishes& mWishes;
  InputWatch mInput;
  std::string mText;
  bool mEnded = false;
};

}  // namespace

std::unique_ptr<LineSource> MakePipeSource(NRuntime::AsioLoop& loop, Wishes& wishes) {
  return std::make_unique<PipeSource>(loop, wishes);
}

}  // namespace NBench
