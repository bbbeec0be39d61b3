#pragma once
// Words of the command line and of configurations that hold a name, an address and options:
// NAME[:ADDRESS][,OPTION[=VALUE]...]. An address in double quotes may hold commas.

#include <optional>
#include <string>
#include <string_view>

namespace NRuntime {

/// Takes the text up to a separator off the front, and the separator with it.
std::string_view TakeUpTo(std::string_view& text, char separator);

/// Takes what stands before the options off the front, NAME[:ADDRESS], and the comma behind it. Empty: the
/// quotation mark of the address is not closed.
std::optional<std::string_view> TakeHead(std::string_view& word);

/// The address of a head without its quotation marks.
std::string_view Unquoted(std::string_view address);
/// An address as it stands in a word: in quotation marks where it needs them.
std::string QuotedIfNeeded(const std::string& address);

}  // namespace NRuntime
