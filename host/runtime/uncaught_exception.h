#pragma once

#include <cstddef>
#include <cstdio>
#include <exception>

namespace NRuntime {

/// What an exception that nobody catches says, for a handler of std::terminate; the text stays as it is where
/// none is under way.
template <std::size_t Size>
void DescribeUncaughtException(char (&text)[Size], const char* endOfLine) {
  if (!std::current_exception()) return;
  try {
    throw;
  } catch (const std::exception& error) {
    std::snprintf(text, Size, "exception: %s%s", error.what(), endOfLine);
  } catch (...) {
    std::snprintf(text, Size, "exception of an unknown kind%s", endOfLine);
  }
}

}  // namespace NRuntime
