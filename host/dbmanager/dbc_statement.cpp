#include "host/dbmanager/dbc_statement.h"

#include <charconv>

namespace NDatabases {
namespace {

constexpr std::size_t kLongestName = 1024;
constexpr std::size_t kLongestText = 65536;
constexpr std::size_t kLongestShown = 40;

struct KindRow {
  std::string_view keyword;
  ObjectKind kind;
};

constexpr KindRow kKinds[] = {{"BU_", ObjectKind::Node},
                              {"BO_", ObjectKind::Message},
                              {"SG_", ObjectKind::Signal},
                              {"EV_", ObjectKind::Environment}};

// Whole characters, and none that would break the line that they stand in.
std::string Shown(std::string_view text) {
  std::string shown;
  for (const char c : text) {
    const bool opensCharacter = (static_cast<unsigned char>(c) & 0xC0) != 0x80;
    if (shown.size() >= kLongestShown && opensCharacter) return shown + "...";
    shown += static_cast<unsigned char>(c) < 0x20 || c == 0x7F ? ' ' : c;
  }
  return shown;
}

template <class Number>
bool Parse(std::string_view text, Number& number) {
  if (text.starts_with('+')) text.remove_prefix(1);
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size();
}

}  // namespace

DbcToken Statement::Take() {
  const DbcToken taken = mNext;
  mLine = taken.line;
  mNext = mLexer.Take();
  return taken;
}

std::string Statement::WhatStandsNext() const {
  return AtEnd() ? "the file ends there" : "\"" + Shown(mNext.text) + "\" stands there";
}

// What is missing at the end of a line is missing there, not where the next thing stands.
void Statement::Fail(const std::string& expected) const {
  const bool endsLine = mNext.opensLine && mNext.line > mLine && !AtEnd();
  const std::string found = endsLine ? "the line ends there" : WhatStandsNext();
  throw BrokenStatement{{endsLine ? mLine : mNext.line, expected + " is expected, " + found}};
}

void Statement::FailAtStart(const std::string& expected) const {
  throw BrokenStatement{{mNext.line, expected + " is expected, " + WhatStandsNext()}};
}

std::string Statement::TakeWord(const char* expected) {
  if (mNext.kind != DbcToken::kWord) Fail(expected);
  if (mNext.text.size() > kLongestName) Fail("a name of at most 1024 characters");
  return std::string(Take().text);
}

std::string Statement::TakeString(const char* expected) {
  if (mNext.kind != DbcToken::kString) Fail(expected);
  if (mNext.isUnclosed) {
    throw BrokenStatement{{mNext.line, "the quotation mark that closes \"" + Shown(mNext.text) +
                                           "\" is expected, the line ends without it"}};
  }
  if (mNext.text.size() > kLongestText) Fail("a text of at most 65536 bytes");
  return Unescaped(Take().text);
}

void Statement::TakeSymbol(char symbol) {
  if (!NextIs(symbol)) Fail(std::string("\"") + symbol + '"');
  Take();
}

double Statement::TakeNumber(const char* expected) {
  double number = 0;
  if (mNext.kind != DbcToken::kWord || !Parse(mNext.text, number)) Fail(expected);
  Take();
  return number;
}

std::uint32_t Statement::TakeUnsigned(const char* expected) {
  std::uint32_t number = 0;
  if (mNext.kind != DbcToken::kWord || !Parse(mNext.text, number)) Fail(expected);
  Take();
  return number;
}

ObjectKind Statement::TakeObjectKind() {
  if (mNext.kind != DbcToken::kWord) return ObjectKind::Network;
  for (const KindRow& row : kKinds) {
    if (row.keyword != mNext.text) continue;
    Take();
    return row.kind;
  }
  return ObjectKind::Network;
}

ObjectName Statement::TakeObjectName() {
  ObjectName object;
  object.kind = TakeObjectKind();
  if (object.kind == ObjectKind::Node) object.name = TakeWord("the name of a node");
  if (object.kind == ObjectKind::Environment) object.name = TakeWord("the name of a variable");
  if (object.kind == ObjectKind::Message || object.kind == ObjectKind::Signal) {
    object.messageId = TakeUnsigned("the identifier of a message");
  }
  if (object.kind == ObjectKind::Signal) object.name = TakeWord("the name of a signal");
  return object;
}

}  // namespace NDatabases
