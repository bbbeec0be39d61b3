#pragma once
// The words of a DBC file. A view of its text: nothing is copied.

#include <cstdint>
#include <string>
#include <string_view>

namespace NDatabases {

struct DbcToken {
  enum Kind { kWord, kString, kSymbol, kEnd };

  Kind kind = kEnd;
  std::string_view text;  ///< of a string what stands between its quotes
  std::uint32_t line = 1;
  bool opensLine = false;   ///< nothing stands before it
  bool isUnclosed = false;  ///< a string whose quotation mark is missing: it was ended with its line
};

class DbcLexer {
 public:
  explicit DbcLexer(std::string_view text) : mText(text) {}

  DbcToken Take();

 private:
  void SkipBlanks();
  DbcToken TakeString();
  std::size_t FindQuote(std::size_t from);

  std::string_view mText;
  std::size_t mAt = 0;
  std::size_t mQuote = 0;
  std::uint32_t mLine = 1;
  bool mOpensLine = true;
};

/// A string with its escaped quotation marks.
std::string Unescaped(std::string_view text);

}  // namespace NDatabases
