#include "host/buses/socketcand_text.h"

#include <algorithm>
#include <charconv>
#include <cinttypes>
#include <cstdio>

#include "host/buses/candump.h"
#include "host/runtime/can_message.h"

namespace NBuses {
namespace {

constexpr std::size_t kLongestMessage = 256;  // `< send` with 8 bytes takes less than 50
constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::size_t kStandardDigits = 3;

std::vector<std::string_view> Words(std::string_view text) {
  std::vector<std::string_view> words;
  for (;;) {
    const std::size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos) return words;
    text.remove_prefix(begin);
    const std::size_t size = std::min(text.find_first_of(kBlanks), text.size());
    words.push_back(text.substr(0, size));
    text.remove_prefix(size);
  }
}

template <class Number>
bool ReadNumber(std::string_view text, int base, Number largest, Number& number) {
  const char* end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number, base);
  return error == std::errc() && stopped == end && number <= largest;
}

// Three digits or fewer are an 11-bit identifier, more are a 29-bit one.
bool ReadIdentifier(std::string_view text, NSdk::CanFrame& frame) {
  const bool extended = text.size() > kStandardDigits;
  if (extended) frame.flags = NSdk::kFrameExtended;
  return ReadNumber(text, 16, extended ? NRuntime::kLargestExtended : NRuntime::kLargestStandard,
                    frame.identifier);
}

}  // namespace

std::optional<std::vector<std::string_view>> SocketcandStream::Next() {
  mBegin = std::min(mBytes.find('<', mBegin), mBytes.size());
  const std::size_t end = mBytes.find('>', mBegin);
  const std::size_t size = std::min(end, mBytes.size()) - mBegin;
  if (size > kLongestMessage) mIsTooLong = true;
  if (mIsTooLong || end == std::string::npos) {
    DropTaken();
    return std::nullopt;
  }
  const std::string_view inside(mBytes.data() + mBegin + 1, size - 1);
  mBegin = end + 1;
  return Words(inside);
}

// Only when nothing that was handed out is in use any more.
void SocketcandStream::DropTaken() {
  mBytes.erase(0, mBegin);
  mBegin = 0;
}

std::string SendCommand(const NSdk::CanFrame& frame) {
  const bool extended = (frame.flags & NSdk::kFrameExtended) != 0;
  const unsigned size = frame.flags & NSdk::kFrameDlcMask;
  char text[32];
  std::snprintf(text, sizeof text, extended ? "< send %08" PRIX32 " %u " : "< send %03" PRIX32 " %u ",
                frame.identifier, size);
  std::string message = text;
  const unsigned bytes = (frame.flags & NSdk::kFrameRemote) != 0 ? 0 : size;
  for (unsigned position = 0; position < bytes; ++position) {
    std::snprintf(text, sizeof text, "%02X ", static_cast<unsigned>(frame.data[position]));
    message += text;
  }
  return message + '>';
}

std::optional<NSdk::CanFrame> ReadSend(const std::vector<std::string_view>& words) {
  NSdk::CanFrame frame;
  std::uint32_t size = 0;
  if (words.size() < 3 || !ReadIdentifier(words[1], frame)) return std::nullopt;
  if (!ReadNumber<std::uint32_t>(words[2], 10, sizeof frame.data, size)) return std::nullopt;
  frame.flags |= size;
  const std::size_t bytes = words.size() - 3;
  if (bytes == 0 && size != 0) {
    frame.flags |= NSdk::kFrameRemote;
    return frame;
  }
  if (bytes != size) return std::nullopt;
  for (std::size_t position = 0; position < bytes; ++position) {
    if (!ReadNumber<std::uint8_t>(words[3 + position], 16, 0xFF, frame.data[position])) return std::nullopt;
  }
  return frame;
}

std::string FrameMessage(const NSdk::CanFrame& frame, std::chrono::nanoseconds time) {
  const bool extended = (frame.flags & NSdk::kFrameExtended) != 0;
  const std::int64_t microseconds = std::chrono::duration_cast<std::chrono::microseconds>(time).count();
  char text[64];
  std::snprintf(text, sizeof text,
                extended ? "< frame %08" PRIX32 " %" PRId64 ".%06" PRId64 " "
                         : "< frame %03" PRIX32 " %" PRId64 ".%06" PRId64 " ",
                frame.identifier, microseconds / 1000000, microseconds % 1000000);
  return text + DataText(frame) + " >";
}

std::optional<NSdk::CanFrame> ReadFrame(const std::vector<std::string_view>& words) {
  NSdk::CanFrame frame;
  if (words.size() < 3 || words.size() > 4 || !ReadIdentifier(words[1], frame)) return std::nullopt;
  const std::string_view data = words.size() == 4 ? words[3] : std::string_view();
  if (data.size() % 2 != 0 || data.size() > 2 * sizeof frame.data) return std::nullopt;
  for (std::size_t position = 0; position < data.size() / 2; ++position) {
    const std::string_view pair = data.substr(2 * position, 2);
    if (!ReadNumber<std::uint8_t>(pair, 16, 0xFF, frame.data[position])) return std::nullopt;
  }
  frame.flags |= static_cast<std::uint32_t>(data.size() / 2);
  return frame;
}

std::optional<HostAndPort> ReadHostAndPort(std::string_view text) {
  HostAndPort result;
  const bool hasBrackets = !text.empty() && text.front() == '[';
  const std::size_t hostEnd = hasBrackets ? text.find(']') : text.find(':');
  if (hasBrackets && hostEnd == std::string_view::npos) return std::nullopt;
  result.host = hasBrackets ? text.substr(1, hostEnd - 1) : text.substr(0, hostEnd);
  std::string_view rest = hostEnd == std::string_view::npos ? std::string_view() : text.substr(hostEnd);
  if (hasBrackets) rest.remove_prefix(1);
  if (result.host.empty()) return std::nullopt;
  if (rest.empty()) return result;
  if (rest.front() != ':' || !ReadNumber<std::uint16_t>(rest.substr(1), 10, 0xFFFF, result.port)) {
    return std::nullopt;
  }
  return result;
}

std::string HostAndPortText(const std::string& host, std::uint16_t port) {
  const bool hasColons = host.find(':') != std::string::npos;
  return (hasColons ? "[" + host + "]" : host) + ":" + std::to_string(port);
}

}  // namespace NBuses
