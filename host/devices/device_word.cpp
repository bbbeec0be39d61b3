#include "host/devices/device_word.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <stdexcept>
#include <vector>

namespace NDevices {
namespace {

constexpr unsigned kMaxNode = 127;
constexpr std::uint32_t kAny = 0xFFFFFFFF;
constexpr std::uint32_t kLongestDelay_ms = 3600000;
constexpr std::size_t kMeaningColumn = 21;  // of the help text

// How a device is told to misbehave. A flag has no range of values.
struct FaultOption {
  std::string_view name;
  std::string_view value;  // what it is called, for the help text
  std::uint32_t low, high;
  void (*set)(Misbehaviour& faults, std::uint32_t value);
  std::string_view meaning;

  bool IsFlag() const { return value.empty(); }
};

constexpr FaultOption kFaultOptions[] = {
    {"late", "MS", 0, kLongestDelay_ms,
     [](Misbehaviour& faults, std::uint32_t value) { faults.answerDelay = std::chrono::milliseconds(value); },
     "every answer to an SDO comes MS milliseconds late"},
    {"silent", "", 0, 0, [](Misbehaviour& faults, std::uint32_t) { faults.silent = true; },
     "SDO requests are not answered"},
    {"abort", "CODE", 1, kAny,
     [](Misbehaviour& faults, std::uint32_t value) { faults.abort = AbortCode{value}; },
     "every transfer is aborted with CODE (0x06020000)"},
    {"abort-at", "N", 1, kAny,
     [](Misbehaviour& faults, std::uint32_t value) { faults.abortAtSegment = value; },
     "... at its segment N, not in answer to the request"},
    {"bad-crc", "", 0, 0, [](Misbehaviour& faults, std::uint32_t) { faults.badCrc = true; },
     "CRCs of block transfers are wrong, or found wrong"},
    {"vary-block-size", "", 0, 0, [](Misbehaviour& faults, std::uint32_t) { faults.varyBlockSize = true; },
     "every other sub-block of a download is half as long"},
    {"wrong-toggle", "", 0, 0, [](Misbehaviour& faults, std::uint32_t) { faults.wrongToggle = true; },
     "a segment, or its answer, has the other toggle bit"},
    {"wrong-sequence", "", 0, 0, [](Misbehaviour& faults, std::uint32_t) { faults.wrongSequence = true; },
     "a block's segment, or its answer, has a wrong number"},
    {"drop-segment", "", 0, 0, [](Misbehaviour& faults, std::uint32_t) { faults.dropSegment = true; },
     "a segment is not sent, or not taken"},
    {"segment", "N", 1, kAny, [](Misbehaviour& faults, std::uint32_t value) { faults.segment = value; },
     "... and that is segment N of each transfer (1)"},
};

[[noreturn]] void Refuse(std::string_view word, const std::string& reason) {
  throw std::runtime_error("device \"" + std::string(word) + "\": " + reason);
}

// Takes the text up to a separator off the front, and the separator with it.
std::string_view TakeUpTo(std::string_view& text, char separator) {
  const std::size_t end = text.find(separator);
  const std::string_view taken = text.substr(0, end);
  text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  return taken;
}

// Decimal, or hexadecimal behind 0x.
std::optional<std::uint32_t> ParseNumber(std::string_view text) {
  const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (hexadecimal) text.remove_prefix(2);
  std::uint32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number, hexadecimal ? 16 : 10);
  if (error != std::errc() || stopped != end) return std::nullopt;
  return number;
}

unsigned char ParseNode(std::string_view word, std::string_view number) {
  unsigned node = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), node);
  const bool isNumber = error == std::errc() && end == number.data() + number.size();
  if (number.empty()) Refuse(word, "it begins with its node-ID, 1 to 127");
  if (!isNumber && error != std::errc::result_out_of_range) {
    Refuse(word, "the node-ID \"" + std::string(number) + "\" is no decimal number");
  }
  if (!isNumber || node == 0 || node > kMaxNode) {
    Refuse(word, "the node-ID " + std::string(number) + " is not in the range 1 to 127");
  }
  return static_cast<unsigned char>(node);
}

const FaultOption& FindOption(std::string_view word, std::string_view name) {
  std::string known;
  for (const FaultOption& option : kFaultOptions) {
    if (option.name == name) return option;
    known += (known.empty() ? "" : ", ") + std::string(option.name);
  }
  Refuse(word, "unknown option \"" + std::string(name) + "\" (known: " + known + ")");
}

std::uint32_t ParseValue(std::string_view word, const FaultOption& option, std::string_view text) {
  const auto value = ParseNumber(text);
  if (value && *value >= option.low && *value <= option.high) return *value;
  std::string wanted = "a number from " + std::to_string(option.low);
  if (option.high != kAny) wanted += " to " + std::to_string(option.high);
  Refuse(word, std::string(option.name) + "=" + std::string(text) + ": " + wanted + " is wanted");
}

void ReadFault(std::string_view word, std::string_view text, std::vector<std::string_view>& seen,
               Misbehaviour& faults) {
  std::string_view value = text;
  const std::string_view name = TakeUpTo(value, '=');
  if (name.empty())
    Refuse(word, "an option is written NAME or NAME=VALUE, not \"" + std::string(text) + "\"");
  const FaultOption& option = FindOption(word, name);
  const bool hasValue = name.size() != text.size();
  if (option.IsFlag() && hasValue) Refuse(word, "the option \"" + std::string(name) + "\" has no value");
  if (!option.IsFlag() && !hasValue) {
    Refuse(word, "a value is wanted: " + std::string(name) + "=" + std::string(option.value));
  }
  if (std::find(seen.begin(), seen.end(), name) != seen.end()) {
    Refuse(word, "the option \"" + std::string(name) + "\" is given twice");
  }
  seen.push_back(name);
  option.set(faults, option.IsFlag() ? 0 : ParseValue(word, option, value));
}

// What changes nothing by itself is a mistake.
void CheckFaults(std::string_view word, const std::vector<std::string_view>& seen,
                 const Misbehaviour& faults) {
  const auto given = [&](std::string_view name) {
    return std::find(seen.begin(), seen.end(), name) != seen.end();
  };
  if (given("abort-at") && !given("abort")) Refuse(word, "abort-at wants abort=CODE beside it");
  if (given("segment") && !faults.wrongToggle && !faults.wrongSequence && !faults.dropSegment) {
    Refuse(word, "segment wants wrong-toggle, wrong-sequence or drop-segment beside it");
  }
}

}  // namespace

DeviceWord ParseDeviceWord(std::string_view word) {
  std::string_view options = word;
  std::string_view description = TakeUpTo(options, ',');
  const bool hasOptions = description.size() != word.size();
  const bool hasDescription = description.find(':') != std::string_view::npos;
  DeviceWord device;
  device.nodeId = ParseNode(word, TakeUpTo(description, ':'));
  device.description = description;
  if (hasDescription && description.empty()) Refuse(word, "the name of a file is missing after the colon");
  if (hasOptions && (options.empty() || options.back() == ',')) {
    Refuse(word, "nothing stands after the last comma");
  }
  std::vector<std::string_view> seen;
  while (!options.empty()) ReadFault(word, TakeUpTo(options, ','), seen, device.faults);
  CheckFaults(word, seen, device.faults);
  return device;
}

std::string DescribeDeviceOptions() {
  std::string text;
  for (const FaultOption& option : kFaultOptions) {
    std::string form = "  ," + std::string(option.name);
    if (!option.IsFlag()) form += "=" + std::string(option.value);
    form.resize(std::max(form.size() + 1, kMeaningColumn), ' ');
    text += form + std::string(option.meaning) + "\n";
  }
  return text;
}

}  // namespace NDevices
