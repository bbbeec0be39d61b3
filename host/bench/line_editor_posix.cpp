// Lines at a terminal through libedit. It asks for its characters one by one, and waiting for one runs the
// loop.
#include <histedit.h>
#include <unistd.h>

#include <algorithm>
#include <clocale>
#include <cstdlib>
#include <cwchar>
#include <exception>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "host/bench/console.h"
#include "host/bench/input_watch.h"
#include "host/bench/line_completion.h"
#include "host/bench/line_history.h"
#include "host/bench/line_source.h"

namespace NBench {
namespace {

char kPrompt[] = "ostrel> ";

// Of UTF-8, whose later bytes begin with the bits 10.
std::size_t Characters(const std::string& text) {
  return static_cast<std::size_t>(std::count_if(
      text.begin(), text.end(), [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
}

bool IsPlainTerminal() {
  const char* const name = std::getenv("TERM");
  return !name || !*name || std::string_view(name) == "dumb";
}

struct EndEditing {
  void operator()(EditLine* edit) const { el_end(edit); }
};
struct EndHistory {
  void operator()(History* history) const { history_end(history); }
};

class TerminalSource final : public LineSource {
 public:
  TerminalSource(NRuntime::AsioLoop& loop, Wishes& wishes, Completer completer,
                 std::filesystem::path history);

  std::optional<std::string> Next() override;
  void MakeRoom() override;

 private:
  static TerminalSource& Of(EditLine* edit);
  static int OnWantCharacter(EditLine* edit, wchar_t* character);
  static unsigned char OnComplete(EditLine* edit, int key);

  void ReadHistory();
  int Character(wchar_t& character);
  bool Byte(char& byte);
  unsigned char Complete();
  void ShowChoices(const std::vector<std::string>& choices);
  int RowOfCursor() const;
  void ShowAgain();
  void Remember(const std::string& line);

  NRuntime::AsioLoop& mLoop;
  Wishes& mWishes;
  Completer mCompleter;
  std::filesystem::path mHistoryFile;  // empty: none
  InputWatch mInput;
  std::unique_ptr<History, EndHistory> mHistory;
  std::unique_ptr<EditLine, EndEditing> mEdit;
  std::string mLast;          // of the history
  std::exception_ptr mFault;  // thrown while a character was waited for
  bool mPlain;                // a terminal without cursor movement
  bool mEditing = false;
  bool mEnded = false;
  bool mHidden = false;
  std::shared_ptr<bool> mAlive = std::make_shared<bool>(true);  // posted tasks look whether this is gone
};

TerminalSource::TerminalSource(NRuntime::AsioLoop& loop, Wishes& wishes, Completer completer,
                               std::filesystem::path history)
    : mLoop(loop),
      mWishes(wishes),
      mCompleter(std::move(completer)),
      mHistoryFile(std::move(history)),
      mInput(loop),
      mHistory(history_init()),
      mPlain(IsPlainTerminal()) {
  std::setlocale(LC_CTYPE, "");  // what a character is
  mEdit.reset(el_init("ostrel-bench", stdin, stdout, stderr));
  if (!mEdit || !mHistory) throw std::runtime_error("lines cannot be edited at this terminal");
  el_set(mEdit.get(), EL_CLIENTDATA, this);
  el_set(mEdit.get(), EL_PROMPT, static_cast<char* (*)(EditLine*)>([](EditLine*) { return kPrompt; }));
  el_set(mEdit.get(), EL_SIGNAL, 0);  // they come through the loop
  el_set(mEdit.get(), EL_EDITOR, "emacs");
  el_set(mEdit.get(), EL_GETCFN, OnWantCharacter);
  el_set(mEdit.get(), EL_HIST, ::history, mHistory.get());
  el_set(mEdit.get(), EL_ADDFN, "ostrel-complete", "Complete the word", OnComplete);
  constexpr const char* kKeys[][2] = {
      {"^I", "ostrel-complete"},         {"^R", "em-inc-search-prev"}, {"\\e[1~", "ed-move-to-beg"},
      {"\\e[4~", "ed-move-to-end"},      {"\\e[H", "ed-move-to-beg"},  {"\\e[F", "ed-move-to-end"},
      {"\\e[3~", "ed-delete-next-char"}, {"\\e[1;5C", "em-next-word"}, {"\\e[1;5D", "ed-prev-word"}};
  for (const auto& key : kKeys) el_set(mEdit.get(), EL_BIND, key[0], key[1], nullptr);
  el_source(mEdit.get(), nullptr);  // the user's own keys
  ReadHistory();
}

void TerminalSource::ReadHistory() {
  HistEvent event;
  ::history(mHistory.get(), &event, H_SETSIZE, kHistoryLines);
  if (mHistoryFile.empty()) return;
  for (const std::string& line : LoadHistory(mHistoryFile)) {
    ::history(mHistory.get(), &event, H_ENTER, line.c_str());
    mLast = line;
  }
}

std::optional<std::string> TerminalSource::Next() {
  while (!mWishes.terminated && !mEnded) {
    int count = 0;
    mEditing = true;
    el_set(mEdit.get(), EL_PREP_TERM,
           1);  // before the prompt: what is typed behind it is for the editor alone
    const char* const text = el_gets(mEdit.get(), &count);
    mEditing = false;
    if (mFault) std::rethrow_exception(std::exchange(mFault, nullptr));
    if (mWishes.terminated) break;
    // As shells do: what was typed stays to be seen, and a new line begins.
    if (std::exchange(mWishes.interrupted, false)) {
      std::fputs("^C\n", stdout);
    } else if (text && count > 0) {
      std::string line(text, static_cast<std::size_t>(count));
      line.erase(line.find_last_not_of("\r\n") + 1);
      Remember(line);
      return line;
    } else {
      mEnded = true;
    }
  }
  std::fputc('\n', stdout);
  return std::nullopt;
}

TerminalSource& TerminalSource::Of(EditLine* edit) {
  TerminalSource* source = nullptr;
  el_get(edit, EL_CLIENTDATA, &source);
  return *source;
}

// What is thrown waits until libedit has put the terminal in order.
int TerminalSource::OnWantCharacter(EditLine* edit, wchar_t* character) {
  TerminalSource& self = Of(edit);
  try {
    return self.Character(*character);
  } catch (...) {
    self.mFault = std::current_exception();
    return -1;
  }
}

// 1: a character, 0: none, the line is given up.
int TerminalSource::Character(wchar_t& character) {
  std::mbstate_t state = {};
  for (char byte = 0; Byte(byte);) {
    const std::size_t size = std::mbrtowc(&character, &byte, 1, &state);
    if (size == static_cast<std::size_t>(-1)) {
      state = {};  // no character: passed over
    } else if (size != static_cast<std::size_t>(-2)) {
      return 1;
    }
  }
  return 0;
}

bool TerminalSource::Byte(char& byte) {
  const auto wished = [this] { return mWishes.terminated || mWishes.interrupted; };
  while (!wished() && !mInput.Run()) {
  }
  ShowAgain();  // what the character changes is drawn where the line stands
  return !wished() && read(STDIN_FILENO, &byte, 1) == 1;
}

unsigned char TerminalSource::OnComplete(EditLine* edit, int) {
  try {
    return Of(edit).Complete();
  } catch (...) {
    return CC_ERROR;
  }
}

unsigned char TerminalSource::Complete() {
  const LineInfo* const line = el_line(mEdit.get());
  const CompletedLine completed = CompleteWord({line->buffer, line->cursor}, mCompleter);
  if (!completed.choices.empty()) {
    ShowChoices(completed.choices);
    return CC_REDISPLAY;
  }
  if (completed.insert.empty()) return CC_ERROR;
  const std::string erased(line->cursor - completed.erase, line->cursor);
  el_deletestr(mEdit.get(), static_cast<int>(Characters(erased)));
  return el_insertstr(mEdit.get(), completed.insert.c_str()) == 0 ? CC_REFRESH : CC_ERROR;
}

void TerminalSource::ShowChoices(const std::vector<std::string>& choices) {
  std::size_t width = 0;
  for (const std::string& choice : choices) width = std::max(width, Characters(choice) + 2);
  const std::size_t columns = std::max<std::size_t>(1, SizeOfTerminal(stdout).columns / width);
  for (std::size_t position = 0; position < choices.size(); ++position) {
    const bool first = position % columns == 0;
    std::fputs(first ? "\n" : "", stdout);
    std::fputs(choices[position].c_str(), stdout);
    if (!first || columns > 1)
      std::fprintf(stdout, "%*s", static_cast<int>(width - Characters(choices[position])), "");
  }
  std::fputc('\n', stdout);
}

void TerminalSource::Remember(const std::string& line) {
  if (line.find_first_not_of(" \t") == std::string::npos || line == mLast) return;
  HistEvent event;
  ::history(mHistory.get(), &event, H_ENTER, line.c_str());
  mLast = line;
  if (!mHistoryFile.empty()) AppendHistory(mHistoryFile, line);
}

int TerminalSource::RowOfCursor() const {
  const LineInfoW* const line = el_wline(mEdit.get());
  int width = static_cast<int>(sizeof kPrompt) - 1;
  for (const wchar_t* at = line->buffer; at < line->cursor; ++at) width += std::max(0, wcwidth(*at));
  return width / std::max(1, static_cast<int>(SizeOfTerminal(stdout).columns));
}

// A burst of output costs one redraw.
void TerminalSource::MakeRoom() {
  if (!mEditing || std::exchange(mHidden, true)) return;
  if (mPlain) {
    std::fputc('\n', stdout);
  } else {
    const int row = RowOfCursor();
    if (row > 0) std::fprintf(stdout, "\033[%dA", row);
    std::fputs("\r\033[J", stdout);  // to the line's beginning, and all behind it is cleared
  }
  std::fflush(stdout);
  mLoop.Post([this, alive = std::weak_ptr<bool>(mAlive)] {
    if (!alive.expired()) ShowAgain();
  });
}

void TerminalSource::ShowAgain() {
  if (std::exchange(mHidden, false) && mEditing) el_set(mEdit.get(), EL_REFRESH);
}

}  // namespace

std::unique_ptr<LineSource> MakeTerminalSource(NRuntime::AsioLoop& loop, Wishes& wishes, Completer completer,
                                               const std::filesystem::path& history) {
  return std::make_unique<TerminalSource>(loop, wishes, std::move(completer), history);
}

}  // namespace NBench
