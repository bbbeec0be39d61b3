#include "host/bench/line_completion.h"

#include <algorithm>
#include <filesystem>

namespace NBench {
namespace {

constexpr char kBlanks[] = " \t";

struct Word {
  std::size_t start = 0;  // its quotation mark, where it has one
  bool quoted = false;
  std::string text;  // without the mark
};

Word LastWord(const std::string& before) {
  Word word;
  for (std::size_t position = 0; position < before.size(); ++position) {
    const char character = before[position];
    if (character == '"') {
      if (position == word.start) word.text.clear();
      word.quoted = !word.quoted;
    } else if (!word.quoted && std::string(kBlanks).find(character) != std::string::npos) {
      word = {position + 1, false, {}};
    } else {
      word.text += character;
    }
  }
  return word;
}

void AddFiles(const std::string& begun, std::vector<std::string>& found) {
  const std::string folder = begun.substr(0, begun.rfind('/') + 1);
  const std::string name = begun.substr(folder.size());
  std::error_code error;
  for (std::filesystem::directory_iterator entry(folder.empty() ? "." : folder, error), end;
       !error && entry != end; entry.increment(error)) {
    const std::string file = entry->path().filename().string();
    if (file.compare(0, name.size(), name) != 0 || (name.empty() && file.front() == '.')) continue;
    std::error_code ignored;
    found.push_back(folder + file + (entry->is_directory(ignored) ? "/" : ""));
  }
}

std::string InCommon(const std::vector<std::string>& texts) {
  std::string common = texts.front();
  for (const std::string& text : texts) {
    const auto [end, other] = std::mismatch(common.begin(), common.end(), text.begin(), text.end());
    common.erase(end, common.end());
  }
  // Not a part of a character: what follows its first byte begins with the bits 10.
  const auto part = [&](std::size_t size) {
    return size < texts.front().size() && (static_cast<unsigned char>(texts.front()[size]) & 0xC0) == 0x80;
  };
  while (part(common.size())) common.pop_back();
  return common;
}

}  // namespace

CompletedLine CompleteWord(const std::string& before, const Completer& completer) {
  const Word word = LastWord(before);
  const Completion candidates = completer(before.substr(0, word.start));
  std::vector<std::string> fit;
  for (const std::string& candidate : candidates.words) {
    if (candidate.compare(0, word.text.size(), word.text) == 0) fit.push_back(candidate);
  }
  if (candidates.files) AddFiles(word.text, fit);
  if (fit.empty()) return {};
  std::sort(fit.begin(), fit.end());

  const bool whole = fit.size() == 1;
  std::string text = InCommon(fit);
  if (!whole && text == word.text) return {{}, 0, std::move(fit)};
  const bool open = text.back() == '/';
  if (word.quoted || text.find_first_of(kBlanks) != std::string::npos) {
    text = '"' + text;
    if (whole && !open) text += '"';
  }
  if (whole && !open) text += ' ';
  return {std::move(text), before.size() - word.start, {}};
}

}  // namespace NBench
