#include "host/bench/console.h"

#include <cerrno>
#include <cstring>

namespace NBench {

void Output::Write(std::string_view text) {
  if (mFailed) return;
  errno = 0;
  std::fwrite(text.data(), 1, text.size(), stdout);
  if (std::fflush(stdout) == 0 && !std::ferror(stdout)) return;
  mFailed = true;
  // Windows knows no EPIPE here: a pipe without a reader gives EINVAL.
  if (errno != EPIPE && errno != EINVAL) mReason = std::string("standard output: ") + std::strerror(errno);
}

void Complain(std::string_view text) {
  const std::string line = "ostrel-bench: " + std::string(text) + '\n';
  std::fwrite(line.data(), 1, line.size(), stderr);
  std::fflush(stderr);
}

StatusLine::StatusLine() : mIsTerminal(IsTerminal(stderr)) {}

void StatusLine::Show(const std::string& text) {
  if (!mIsTerminal) return;
  std::string line = '\r' + text;
  if (text.size() < mSize) line.append(mSize - text.size(), ' ');
  mSize = text.size();
  std::fwrite(line.data(), 1, line.size(), stderr);
  std::fflush(stderr);
}

void StatusLine::Clear() {
  if (mSize == 0) return;
  Show("");
  std::fputc('\r', stderr);
  std::fflush(stderr);
}

}  // namespace NBench
