#pragma once
// Lines of candump logs, as found in files of unknown origin.

#include <chrono>
#include <string>
#include <string_view>

#include "sdk/can_frame.h"

namespace NBuses {

/// What stands in a line of a log.
struct LogLineContent {
  enum class Kind {
    Frame,       ///< `time`, `interface` and `frame` are set
    Nothing,     ///< an empty line or a comment
    ErrorFrame,  ///< recorded by an interface of Linux
    FdFrame,     ///< CAN FD, or another kind of frame that is no classical one
    Malformed    ///< `fault` says why
  };

  Kind kind = Kind::Nothing;
  std::chrono::nanoseconds time{};  ///< since 1970, or since whatever the writer counts from
  std::string_view interfaceName;   ///< lies in the line
  NSdk::CanFrame frame;
  const char* fault = "";
};

/// `(1700000000.000123) can1 123#1122`, also with R or T behind it as newer versions write it, with fractions
/// of 1 to 9 digits, dots between the bytes, lower case and any blanks between the words.
LogLineContent ReadLogLine(std::string_view line);

}  // namespace NBuses
