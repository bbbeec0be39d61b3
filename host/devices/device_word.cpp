#include "host/devices/device_word.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <stdexcept>
#include <vector>

#include "host/devices/fault_option.h"
#include "host/runtime/word_parts.h"

namespace NDevices {
namespace {

using NRuntime::TakeUpTo;

constexpr unsigned kMaxNode = 127;
constexpr std::size_t kMeaningColumn = 21;  // of the help text

[[noreturn]] void Refuse(std::string_view word, const std::string& reason) {
  throw std::runtime_error("device \"" + std::string(word) + "\": " + reason);
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
  if (const FaultOption* option = FindFaultOption(name)) return *option;
  std::string known;
  for (const FaultOption& option : FaultOptions()) {
    known += (known.empty() ? "" : ", ") + std::string(option.name);
  }
  Refuse(word, "unknown option \"" + std::string(name) + "\" (known: " + known + ")");
}

std::uint32_t ParseValue(std::string_view word, const FaultOption& option, std::string_view text) {
  const auto value = ParseNumber(text);
  if (value && *value >= option.low && *value <= option.high) return *value;
  Refuse(word,
         std::string(option.name) + "=" + std::string(text) + ": a number " + option.Range() + " is wanted");
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
  option.set(faults, option.IsFlag() ? 1 : ParseValue(word, option, value));
}

}  // namespace

DeviceWord ParseDeviceWord(std::string_view word) {
  std::string_view options = word;
  const auto head = NRuntime::TakeHead(options);
  if (!head) Refuse(word, "the quotation mark of the file's name is not closed");
  const bool hasOptions = head->size() != word.size();
  const bool hasDescription = head->find(':') != std::string_view::npos;
  std::string_view description = *head;
  DeviceWord device;
  device.nodeId = ParseNode(word, TakeUpTo(description, ':'));
  device.description = NRuntime::Unquoted(description);
  if (hasDescription && device.description.empty())
    Refuse(word, "the name of a file is missing after the colon");
  if (hasOptions && (options.empty() || options.back() == ',')) {
    Refuse(word, "nothing stands after the last comma");
  }
  std::vector<std::string_view> seen;
  while (!options.empty()) ReadFault(word, TakeUpTo(options, ','), seen, device.faults);
  const std::string contradiction = FindContradiction(seen, device.faults);
  if (!contradiction.empty()) Refuse(word, contradiction);
  return device;
}

std::string DeviceWordText(const DeviceWord& device) {
  std::string text = std::to_string(device.nodeId);
  if (!device.description.empty()) text += ":" + NRuntime::QuotedIfNeeded(device.description);
  for (const FaultOption& option : FaultOptions()) {
    const std::uint32_t value = option.get(device.faults);
    if (value == option.get(Misbehaviour())) continue;
    text += "," + std::string(option.name) + (option.IsFlag() ? "" : "=" + std::to_string(value));
  }
  return text;
}

std::string DescribeDeviceOptions() {
  std::string text;
  for (const FaultOption& option : FaultOptions()) {
    std::string form = "  ," + std::string(option.name);
    if (!option.IsFlag()) form += "=" + std::string(option.value);
    form.resize(std::max(form.size() + 1, kMeaningColumn), ' ');
    text += form + std::string(option.meaning) + "\n";
  }
  return text;
}

}  // namespace NDevices
