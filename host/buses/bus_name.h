#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace NBuses {

/// A bus in one word: KIND[:ADDRESS][,OPTION=VALUE...]. An address in double quotes may hold commas.
struct BusName {
  using Option = std::pair<std::string, std::string>;

  std::string kind;
  std::string address;          ///< empty: none was given
  std::vector<Option> options;  ///< in the order given, each key once
};

/// Takes the word apart. Throws std::runtime_error, one line that names the word, when it is malformed: no
/// kind, an empty address after the colon, an option that is not KEY=VALUE or is given twice. Kinds and
/// options are not looked up here.
BusName ParseBusName(std::string_view word);

/// The word for it.
std::string BusWord(const BusName& name);

}  // namespace NBuses
