#include "host/dbmanager/dbc_lexer.h"

#include <algorithm>

namespace NDatabases {
namespace {

constexpr std::string_view kSymbols = ":;,|@()[]";

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f'; }
bool IsSymbol(char c) { return kSymbols.find(c) != std::string_view::npos; }
bool EndsWord(char c) { return IsBlank(c) || IsSymbol(c) || c == '"'; }

}  // namespace

std::string Unescaped(std::string_view text) {
  std::string plain;
  plain.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\\' && i + 1 < text.size() && text[i + 1] == '"') ++i;
    plain += text[i];
  }
  return plain;
}

void DbcLexer::SkipBlanks() {
  for (; mAt < mText.size() && IsBlank(mText[mAt]); ++mAt) {
    if (mText[mAt] != '\n') continue;
    ++mLine;
    mOpensLine = true;
  }
}

DbcToken DbcLexer::Take() {
  SkipBlanks();
  if (mAt == mText.size()) return {DbcToken::kEnd, {}, mLine, true, false};
  if (mText[mAt] == '"') return TakeString();
  const std::size_t begin = mAt++;
  const bool isSymbol = IsSymbol(mText[begin]);
  while (!isSymbol && mAt < mText.size() && !EndsWord(mText[mAt])) ++mAt;
  const DbcToken token = {isSymbol ? DbcToken::kSymbol : DbcToken::kWord, mText.substr(begin, mAt - begin),
                          mLine, mOpensLine, false};
  mOpensLine = false;
  return token;
}

// The next quotation mark that is not escaped. It is kept, so that many broken strings before it do not look
// for it again and again.
std::size_t DbcLexer::FindQuote(std::size_t from) {
  if (mQuote >= from) return mQuote;
  do {
    mQuote = mText.find('"', from);
    from = mQuote + 1;
  } while (mQuote != std::string_view::npos && mQuote > 0 && mText[mQuote - 1] == '\\');
  return mQuote;
}

// A comment may have many lines. But when a quotation mark is missing, the next one opens another string, and
// what stands behind it gives that away: the string then ends with its line, so that no more is lost.
DbcToken DbcLexer::TakeString() {
  const std::size_t begin = ++mAt;
  std::size_t end = std::min(FindQuote(begin), mText.size());
  const std::size_t size = std::min(mText.substr(begin, end - begin).find_first_of("\r\n"), end - begin);
  const bool hasLines = begin + size < end;
  bool closed = end < mText.size();
  if (closed && hasLines && end + 1 < mText.size()) {
    const char behind = mText[end + 1];
    closed = IsBlank(behind) || IsSymbol(behind);
  }
  if (!closed) end = begin + size;
  const DbcToken token = {DbcToken::kString, mText.substr(begin, end - begin), mLine, mOpensLine, !closed};
  mLine += static_cast<std::uint32_t>(std::count(token.text.begin(), token.text.end(), '\n'));
  mAt = closed ? end + 1 : end;
  mOpensLine = false;
  return token;
}

}  // namespace NDatabases
