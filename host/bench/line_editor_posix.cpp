// Lines at a terminal through GNU readline, fed by the loop.
#include <asio/posix/stream_descriptor.hpp>

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

// Behind <cstdio>, which they need.
#include <readline/history.h>
#include <readline/readline.h>

#include "host/bench/line_source.h"

namespace NBench {
namespace {

constexpr char kPrompt[] = "ostrel> ";
constexpr int kHistoryLines = 1000;

// readline has one line at a time and calls functions without an argument of their own.
class TerminalSource* gEditing = nullptr;

class TerminalSource final : public LineSource {
 public:
  TerminalSource(NRuntime::AsioLoop& loop, Wishes& wishes, Completer completer,
                 const std::filesystem::path& history);
  ~TerminalSource() override;

  std::optional<std::string> Next() override;
  void MakeRoom() override;

 private:
  static void OnLine(char* line);
  static char** OnComplete(const char* word, int start, int end);
  static char* NextCandidate(const char* word, int state);

  void WaitForKey();
  void DropLine();
  void Remember(const std::string& line);

  NRuntime::AsioLoop& mLoop;
  Wishes& mWishes;
  Completer mCompleter;
  std::string mHistory;  // path; empty: none
  asio::posix::stream_descriptor mInput;
  Completion mCandidates;
  std::size_t mNextCandidate = 0;
  std::optional<std::string> mLine;
  bool mEditing = false;
  bool mWaiting = false;
  bool mHidden = false;
  std::shared_ptr<bool> mAlive = std::make_shared<bool>(true);  // posted tasks look whether this is gone
};

TerminalSource::TerminalSource(NRuntime::AsioLoop& loop, Wishes& wishes, Completer completer,
                               const std::filesystem::path& history)
    : mLoop(loop),
      mWishes(wishes),
      mCompleter(std::move(completer)),
      mHistory(history.string()),
      mInput(loop.Context(), dup(STDIN_FILENO)) {
  gEditing = this;
  rl_readline_name = "ostrel-bench";
  rl_catch_signals = 0;  // they come through the loop
  rl_attempted_completion_function = OnComplete;
  rl_basic_word_break_characters = rl_completer_word_break_characters = " \t";
  rl_completer_quote_characters = "\"";
  rl_filename_quote_characters = " ";
  using_history();
  stifle_history(kHistoryLines);
  if (mHistory.empty()) return;
  read_history(mHistory.c_str());
  history_truncate_file(mHistory.c_str(), kHistoryLines);
}

// What was thrown while a line was edited must not leave the terminal as it is then.
TerminalSource::~TerminalSource() {
  if (mEditing) rl_callback_handler_remove();
  gEditing = nullptr;
}

std::optional<std::string> TerminalSource::Next() {
  mLine.reset();
  mEditing = true;
  rl_callback_handler_install(kPrompt, OnLine);
  while (mEditing && !mWishes.terminated) {
    if (std::exchange(mWishes.interrupted, false)) DropLine();
    WaitForKey();
  }
  if (mEditing) {
    rl_callback_handler_remove();
    mEditing = false;
  }
  if (!mLine) std::fputc('\n', stdout);
  if (mLine) Remember(*mLine);
  return mLine;
}

void TerminalSource::WaitForKey() {
  if (!std::exchange(mWaiting, true)) {
    mInput.async_wait(asio::posix::stream_descriptor::wait_read, [this](const std::error_code& error) {
      if (error == asio::error::operation_aborted) return;  // this is gone
      mWaiting = false;
      if (mEditing) rl_callback_read_char();
      mLoop.Stop();
    });
  }
  mLoop.Run();
}

// As shells do: what was typed stays to be seen, and a new line begins.
void TerminalSource::DropLine() {
  std::fputs("^C\n", stdout);
  rl_free_line_state();
  rl_callback_sigcleanup();
  rl_replace_line("", 0);
  rl_forced_update_display();
}

// Without an argument: the end of the input. The handler goes while readline puts the terminal in order.
void TerminalSource::OnLine(char* line) {
  rl_callback_handler_remove();
  gEditing->mEditing = false;
  if (!line) return;
  gEditing->mLine = line;
  std::free(line);
}

void TerminalSource::Remember(const std::string& line) {
  if (line.find_first_not_of(" \t") == std::string::npos) return;
  const HIST_ENTRY* const last =
      history_length > 0 ? history_get(history_base + history_length - 1) : nullptr;
  if (last && line == last->line) return;
  add_history(line.c_str());
  if (mHistory.empty()) return;
  const int file =
      open(mHistory.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);  // appending does not make it
  if (file < 0) return;
  close(file);
  append_history(1, mHistory.c_str());
}

// A burst of output costs one redraw.
void TerminalSource::MakeRoom() {
  if (!mEditing || std::exchange(mHidden, true)) return;
  rl_clear_visible_line();
  std::fflush(rl_outstream);
  mLoop.Post([this, alive = std::weak_ptr<bool>(mAlive)] {
    if (alive.expired()) return;
    mHidden = false;
    if (mEditing) rl_forced_update_display();
  });
}

// Names of files are completed by readline itself when there is no other word.
char** TerminalSource::OnComplete(const char* word, int start, int) {
  gEditing->mCandidates = gEditing->mCompleter(std::string(rl_line_buffer, static_cast<std::size_t>(start)));
  if (!gEditing->mCandidates.files) rl_attempted_completion_over = 1;
  return rl_completion_matches(word, NextCandidate);
}

char* TerminalSource::NextCandidate(const char* word, int state) {
  if (state == 0) gEditing->mNextCandidate = 0;
  const auto& words = gEditing->mCandidates.words;
  while (gEditing->mNextCandidate < words.size()) {
    const std::string& candidate = words[gEditing->mNextCandidate++];
    if (candidate.compare(0, std::strlen(word), word) == 0) return strdup(candidate.c_str());
  }
  return nullptr;
}

}  // namespace

std::unique_ptr<LineSource> MakeTerminalSource(NRuntime::AsioLoop& loop, Wishes& wishes, Completer completer,
                                               const std::filesystem::path& history) {
  return std::make_unique<TerminalSource>(loop, wishes, std::move(completer), history);
}

// The user's state folder, as the XDG base directories have it.
std::filesystem::path HistoryFile() {
  const char* const state = std::getenv("XDG_STATE_HOME");
  const char* const home = std::getenv("HOME");
  std::filesystem::path folder;
  if (state && *state == '/') {
    folder = state;
  } else if (home && *home == '/') {
    folder = std::filesystem::path(home) / ".local" / "state";
  } else {
    return {};
  }
  folder /= "ostrel";
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  return error ? std::filesystem::path() : folder / "shell-history";
}

}  // namespace NBench
