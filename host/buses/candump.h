#pragma once
// Frames as text in the two forms of candump.

#include <chrono>
#include <cstdint>
#include <string>

#include "sdk/can_frame.h"

namespace NBuses {

/// Interface name that stands for a channel: channel 1 is `can1`.
std::string InterfaceName(std::uint32_t channel);

/// `123#1122`, `00000123#R8`: 3 digits for an 11-bit identifier, 8 for a 29-bit one; R and the data length
/// code for a remote frame.
std::string FrameText(const NSdk::CanFrame& frame);

/// Data bytes as upper-case hexadecimal digits without blanks; empty for a remote frame.
std::string DataText(const NSdk::CanFrame& frame);

/// A line of a log: `(1700000000.000123) can1 123#1122`. `time` is counted from 1970-01-01 UTC, cut to
/// microseconds. No line end.
std::string LogLine(std::chrono::nanoseconds time, std::uint32_t channel, const NSdk::CanFrame& frame);

/// A line on a screen: `  can1  123   [2]  11 22`. No line end.
std::string ConsoleLine(std::uint32_t channel, const NSdk::CanFrame& frame);

/// What stands before a line on a screen when times are wanted: ` (012.345678)`, counted from the start.
std::string ConsoleTime(std::chrono::nanoseconds time);

}  // namespace NBuses
