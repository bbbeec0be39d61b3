#include "host/buses/log_line.h"

#include <algorithm>

#include "host/runtime/can_message.h"

namespace NBuses {
namespace {

using Content = LogLineContent;
using Kind = LogLineContent::Kind;

constexpr std::string_view kBlanks = " \t\r";
constexpr std::uint64_t kLatestSecond =
    0xFFFFFFFF;  // in 2106; twice that still fits in 64 bits of nanoseconds
constexpr std::size_t kFractionDigits = 9;
constexpr std::size_t kLongestInterface = 15;
constexpr std::uint32_t kErrorFrameFlag = 0x20000000;

int Digit(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  return digit >= 'a' && digit <= 'f' ? digit - 'a' + 10 : -1;
}

std::string_view TakeWord(std::string_view& rest) {
  const std::size_t begin = rest.find_first_not_of(kBlanks);
  rest.remove_prefix(begin == std::string_view::npos ? rest.size() : begin);
  const std::size_t size = std::min(rest.find_first_of(kBlanks), rest.size());
  const std::string_view word = rest.substr(0, size);
  rest.remove_prefix(size);
  return word;
}

bool ReadDecimal(std::string_view text, std::uint64_t largest, std::uint64_t& number) {
  number = 0;
  for (const char digit : text) {
    if (digit < '0' || digit > '9') return false;
    number = number * 10 + static_cast<std::uint64_t>(digit - '0');
    if (number > largest) return false;
  }
  return !text.empty();
}

// The word in front, `(SECONDS.FRACTION)`.
bool ReadTime(std::string_view word, std::chrono::nanoseconds& time) {
  if (word.size() < 2 || word.front() != '(' || word.back() != ')') return false;
  word = word.substr(1, word.size() - 2);
  const std::size_t point = word.find('.');
  std::uint64_t seconds = 0, fraction = 0;
  if (point == std::string_view::npos || word.size() - point - 1 > kFractionDigits) return false;
  const std::string_view digits = word.substr(point + 1);
  if (!ReadDecimal(word.substr(0, point), kLatestSecond, seconds) ||
      !ReadDecimal(digits, 999999999, fraction)) {
    return false;
  }
  for (std::size_t digit = digits.size(); digit < kFractionDigits; ++digit) fraction *= 10;
  time = std::chrono::nanoseconds(seconds * 1000000000 + fraction);
  return true;
}

const char* ReadIdentifier(std::string_view text, std::uint32_t& identifier, bool& extended) {
  extended = text.size() == 8;
  if (text.size() != 3 && !extended) return "an identifier has 3 or 8 hexadecimal digits";
  identifier = 0;
  for (const char digit : text) {
    if (Digit(digit) < 0) return "an identifier has 3 or 8 hexadecimal digits";
    identifier = identifier << 4 | static_cast<std::uint32_t>(Digit(digit));
  }
  const bool isError = extended && (identifier & ~NRuntime::kLargestExtended) == kErrorFrameFlag;
  const bool fits = identifier <= (extended ? NRuntime::kLargestExtended : NRuntime::kLargestStandard);
  return fits || isError ? nullptr : "the identifier is too large";
}

// R, and the data length code that newer versions write behind it.
const char* ReadRemote(std::string_view text, NSdk::CanFrame& frame) {
  if (text.size() > 1 || (text.size() == 1 && (text[0] < '0' || text[0] > '8'))) {
    return "behind R stands a length from 0 to 8 or nothing";
  }
  frame.flags |= NSdk::kFrameRemote | (text.empty() ? 0 : static_cast<std::uint32_t>(text[0] - '0'));
  return nullptr;
}

const char* ReadData(std::string_view text, NSdk::CanFrame& frame) {
  std::uint32_t size = 0;
  while (!text.empty()) {
    const bool isPair = text.size() >= 2 && Digit(text[0]) >= 0 && Digit(text[1]) >= 0;
    if (!isPair) return "the data are no pairs of hexadecimal digits";
    if (size == sizeof frame.data) return "there are more than 8 data bytes";
    frame.data[size++] = static_cast<std::uint8_t>(Digit(text[0]) << 4 | Digit(text[1]));
    text.remove_prefix(2);
    if (text.size() > 1 && text[0] == '.') text.remove_prefix(1);
  }
  frame.flags |= size;
  return nullptr;
}

// `_9` to `_F` behind 8 bytes: a length code above 8, which means 8 as well.
std::string_view WithoutRawLength(std::string_view text) {
  if (text.size() < 2 || text[text.size() - 2] != '_' || Digit(text.back()) < 9) return text;
  return text.substr(0, text.size() - 2);
}

Content Fault(const char* fault) {
  Content content;
  content.kind = Kind::Malformed;
  content.fault = fault;
  return content;
}

Content Other(Kind kind) {
  Content content;
  content.kind = kind;
  return content;
}

Content ReadFrame(std::string_view word) {
  const std::size_t hash = word.find('#');
  if (hash == std::string_view::npos) return Fault("no frame as candump -L writes it, such as 123#1122");
  Content content;
  content.kind = Kind::Frame;
  bool extended = false;
  const char* fault = ReadIdentifier(word.substr(0, hash), content.frame.identifier, extended);
  if (fault) return Fault(fault);
  if (content.frame.identifier > NRuntime::kLargestExtended) return Other(Kind::ErrorFrame);
  if (extended) content.frame.flags = NSdk::kFrameExtended;
  std::string_view rest = word.substr(hash + 1);
  if (!rest.empty() && rest[0] == '#') return Other(Kind::FdFrame);
  rest = WithoutRawLength(rest);
  const bool remote = !rest.empty() && (rest[0] == 'R' || rest[0] == 'r');
  fault = remote ? ReadRemote(rest.substr(1), content.frame) : ReadData(rest, content.frame);
  return fault ? Fault(fault) : content;
}

}  // namespace

LogLineContent ReadLogLine(std::string_view line) {
  std::string_view rest = line;
  const std::string_view timeWord = TakeWord(rest);
  if (timeWord.empty() || timeWord[0] == '#' || timeWord[0] == ';') return {};
  std::chrono::nanoseconds time{};
  if (timeWord[0] != '(') return Fault("a line begins with a time in brackets");
  if (!ReadTime(timeWord, time)) return Fault("the time is not written (SECONDS.FRACTION)");
  const std::string_view interfaceName = TakeWord(rest);
  if (interfaceName.empty() || interfaceName.size() > kLongestInterface) {
    return Fault("behind the time stands the name of an interface, up to 15 characters");
  }
  Content content = ReadFrame(TakeWord(rest));
  const std::string_view direction = TakeWord(rest);
  const bool isClean = (direction.empty() || direction == "R" || direction == "T") && TakeWord(rest).empty();
  if (content.kind == Kind::Frame && !isClean) return Fault("something stands behind the frame");
  content.time = time;
  content.interfaceName = interfaceName;
  return content;
}

}  // namespace NBuses
