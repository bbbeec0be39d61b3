#pragma once
// Reading one statement of a DBC file: takes what must come next, or says what was expected.

#include <cstdint>
#include <string>
#include <string_view>

#include "host/dbmanager/dbc_lexer.h"
#include "host/dbmanager/dbc_model.h"

namespace NDatabases {

/// Thrown when a statement is not as it should be; the error names line and expectation.
struct BrokenStatement {
  DbcError error;
};

/// What a comment or an attribute value belongs to.
struct ObjectName {
  ObjectKind kind = ObjectKind::Network;
  std::string name;             // of a node, a signal or an environment variable
  std::uint32_t messageId = 0;  // of a message or a signal, as the file writes it
};

class Statement {
 public:
  explicit Statement(std::string_view text) : mLexer(text), mNext(mLexer.Take()) {}

  const DbcToken& Next() const { return mNext; }
  bool AtEnd() const { return mNext.kind == DbcToken::kEnd; }
  bool NextIs(char symbol) const { return mNext.kind == DbcToken::kSymbol && mNext.text[0] == symbol; }
  bool NextIsString() const { return mNext.kind == DbcToken::kString; }
  /// Line of what was taken last.
  std::uint32_t Line() const { return mLine; }

  DbcToken Take();
  /// These throw BrokenStatement: what is `expected`, in words, does not come next.
  std::string TakeWord(const char* expected);
  std::string TakeString(const char* expected);
  void TakeSymbol(char symbol);
  double TakeNumber(const char* expected);
  std::uint32_t TakeUnsigned(const char* expected);
  /// "BU_ Node", "BO_ 100", "SG_ 100 Signal", "EV_ Variable", or nothing of these: the network.
  ObjectName TakeObjectName();
  /// One of "BU_", "BO_", "SG_" and "EV_", or nothing of these: the network.
  ObjectKind TakeObjectKind();
  [[noreturn]] void Fail(const std::string& expected) const;
  /// As Fail, at the beginning of a statement.
  [[noreturn]] void FailAtStart(const std::string& expected) const;

 private:
  std::string WhatStandsNext() const;

  DbcLexer mLexer;
  DbcToken mNext;
  std::uint32_t mLine = 1;
};

}  // namespace NDatabases
