#include "host/bench/console.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace NBench {
namespace {

constexpr char kClearToLineEnd[] = "\x1B[K";
constexpr char kClearToScreenEnd[] = "\x1B[J";

// Of UTF-8 whose characters take one column each.
std::size_t CountColumns(std::string_view text) {
  return static_cast<std::size_t>(
      std::count_if(text.begin(), text.end(), [](char byte) { return (byte & 0xC0) != 0x80; }));
}

}  // namespace

void Output::Write(std::string_view text) {
  if (mFailed) return;
  errno = 0;
  std::fwrite(text.data(), 1, text.size(), stdout);
  if (std::fflush(stdout) == 0 && !std::ferror(stdout)) return;
  mFailed = true;
  // Windows knows no EPIPE here: a pipe without a reader gives EINVAL.
  if (errno != EPIPE && errno != EINVAL) mReason = std::string("standard output: ") + std::strerror(errno);
}

bool Output::End() const {
  if (!mReason.empty()) Complain(mReason);
  return !mFailed;
}

void Complain(std::string_view text) { WriteError("ostrel-bench: " + std::string(text)); }

void WriteError(std::string_view line) {
  const std::string text = std::string(line) + '\n';
  std::fwrite(text.data(), 1, text.size(), stderr);
  std::fflush(stderr);
}

Foot::Foot(std::FILE* stream) : mStream(stream), mIsTerminal(IsTerminal(stream)) {}

void Foot::Show(const std::vector<std::string>& lines) {
  if (!mIsTerminal || (lines.empty() && mShown.empty())) return;
  std::string text = ToTop();
  mShown.clear();
  for (const std::string& line : lines) {
    text += (mShown.empty() ? "" : "\n") + line + kClearToLineEnd;
    mShown.push_back(CountColumns(line));
  }
  Write(text + kClearToScreenEnd);
}

void Foot::Clear() { Show({}); }

// A line that the terminal has become too narrow for takes several rows.
std::string Foot::ToTop() const {
  const std::size_t columns = SizeOfTerminal(mStream).columns;
  std::size_t rows = 0;
  for (const std::size_t width : mShown) rows += width == 0 ? 1 : (width + columns - 1) / columns;
  return rows < 2 ? "\r" : "\r\x1B[" + std::to_string(rows - 1) + 'A';
}

void Foot::Write(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), mStream);
  std::fflush(mStream);
}

}  // namespace NBench
