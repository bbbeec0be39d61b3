#include "host/buses/candump.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>

namespace NBuses {
namespace {

std::uint32_t LengthCode(const NSdk::CanFrame& frame) { return frame.flags & NSdk::kFrameDlcMask; }

bool IsRemote(const NSdk::CanFrame& frame) { return (frame.flags & NSdk::kFrameRemote) != 0; }

std::size_t DataSize(const NSdk::CanFrame& frame) {
  return IsRemote(frame) ? 0 : std::min<std::size_t>(LengthCode(frame), sizeof frame.data);
}

std::string IdentifierText(const NSdk::CanFrame& frame) {
  const bool extended = (frame.flags & NSdk::kFrameExtended) != 0;
  char text[16];
  std::snprintf(text, sizeof text, extended ? "%08" PRIX32 : "%03" PRIX32, frame.identifier);
  return text;
}

std::string Bytes(const NSdk::CanFrame& frame, const char* format) {
  std::string text;
  for (std::size_t position = 0; position < DataSize(frame); ++position) {
    char byte[8];
    std::snprintf(byte, sizeof byte, format, static_cast<unsigned>(frame.data[position]));
    text += byte;
  }
  return text;
}

// Seconds and microseconds in brackets.
std::string TimeText(std::chrono::nanoseconds time, const char* format) {
  const std::int64_t microseconds = std::chrono::duration_cast<std::chrono::microseconds>(time).count();
  char text[48];
  std::snprintf(text, sizeof text, format, microseconds / 1000000, microseconds % 1000000);
  return text;
}

}  // namespace

std::string InterfaceName(std::uint32_t channel) { return "can" + std::to_string(channel); }

std::string FrameText(const NSdk::CanFrame& frame) {
  const std::string identifier = IdentifierText(frame) + '#';
  return IsRemote(frame) ? identifier + 'R' + std::to_string(LengthCode(frame))
                         : identifier + DataText(frame);
}

std::string DataText(const NSdk::CanFrame& frame) { return Bytes(frame, "%02X"); }

std::string LogLine(std::chrono::nanoseconds time, std::uint32_t channel, const NSdk::CanFrame& frame) {
  return TimeText(time, "(%010" PRId64 ".%06" PRId64 ") ") + InterfaceName(channel) + ' ' + FrameText(frame);
}

std::string ConsoleLine(std::uint32_t channel, const NSdk::CanFrame& frame) {
  const std::string head = "  " + InterfaceName(channel) + "  " + IdentifierText(frame) + "   [" +
                           std::to_string(LengthCode(frame)) + "] ";
  return head + (IsRemote(frame) ? " remote request" : Bytes(frame, " %02X"));
}

std::string ConsoleTime(std::chrono::nanoseconds time) {
  return TimeText(time, " (%03" PRId64 ".%06" PRId64 ")");
}

}  // namespace NBuses
