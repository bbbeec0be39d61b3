#include "host/workbench/channel_texts.h"

#include <algorithm>
#include <charconv>
#include <sstream>
#include <stdexcept>

#include "host/runtime/text.h"

namespace NWorkbench {
namespace {

constexpr char kBlanks[] = " \t\r";

std::string Trimmed(const std::string& text) {
  const std::size_t begin = text.find_first_not_of(kBlanks);
  return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

// Lines with something on them.
std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    line = Trimmed(line);
    if (!line.empty()) lines.push_back(line);
  }
  return lines;
}

std::optional<std::uint32_t> ParseNumber(const std::string& text, int base, std::uint32_t most) {
  std::uint32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stopped, error] = std::from_chars(text.data(), end, number, base);
  if (error != std::errc() || stopped != end || number > most) return std::nullopt;
  return number;
}

std::string Hex(std::uint8_t value) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  return {kDigits[value >> 4], kDigits[value & 0x0F]};
}

NConfiguration::Device ParseDeviceLine(const std::string& line,
                                       const std::vector<NConfiguration::Channel>& channels) {
  const auto refuse = [&](const std::string& reason) {
    throw std::runtime_error("device \"" + line + "\": " + reason);
  };
  const std::size_t equals = line.find('=');
  const std::size_t colon = std::min(line.find(':'), line.find(','));
  if (equals == std::string::npos || equals > colon) refuse("CHANNEL=NODE[:FILE] is wanted, for example 1=5");
  const auto channel = ParseNumber(Trimmed(line.substr(0, equals)), 10, 255);
  const auto isThere = [&](const NConfiguration::Channel& each) {
    return channel && each.number == *channel;
  };
  if (std::none_of(channels.begin(), channels.end(), isThere)) {
    refuse("there is no CAN channel " + Trimmed(line.substr(0, equals)));
  }
  return {channel.value_or(0), NDevices::ParseDeviceWord(Trimmed(line.substr(equals + 1)))};
}

}  // namespace

// The rate is that of the registers, where the pages of a module find and change it.
NConfiguration::Channel NewChannel(std::uint32_t number) {
  return {number, number == 1 ? "virtual" : "virtual:" + std::to_string(number),
          NConfiguration::BitTiming{0x03, 0x1C}};
}

std::string TimingText(const std::optional<NConfiguration::BitTiming>& timing) {
  return timing ? Hex(timing->register0) + " " + Hex(timing->register1) : "";
}

std::optional<NConfiguration::BitTiming> ParseTiming(const std::string& text) {
  std::istringstream stream(text);
  std::string first, second, more;
  if (!(stream >> first)) return std::nullopt;
  stream >> second >> more;
  const auto register0 = ParseNumber(first, 16, 0xFF), register1 = ParseNumber(second, 16, 0xFF);
  if (!register0 || !register1 || !more.empty()) {
    throw std::runtime_error("two bytes in hexadecimal are wanted, for example 03 1C");
  }
  return NConfiguration::BitTiming{static_cast<std::uint8_t>(*register0),
                                   static_cast<std::uint8_t>(*register1)};
}

std::string PathLines(const std::vector<std::filesystem::path>& paths) {
  std::string text;
  for (const auto& path : paths) text += NRuntime::PathText(path) + "\r\n";
  return text;
}

std::vector<std::filesystem::path> ParsePathLines(const std::string& text) {
  std::vector<std::filesystem::path> paths;
  for (const std::string& line : Lines(text)) paths.push_back(NRuntime::ToPath(line));
  return paths;
}

std::string DeviceLines(const std::vector<NConfiguration::Device>& devices) {
  std::string text;
  for (const auto& device : devices) {
    text += std::to_string(device.channel) + "=" + NDevices::DeviceWordText(device.device) + "\r\n";
  }
  return text;
}

std::vector<NConfiguration::Device> ParseDeviceLines(const std::string& text,
                                                     const std::vector<NConfiguration::Channel>& channels) {
  std::vector<NConfiguration::Device> devices;
  for (const std::string& line : Lines(text)) {
    auto device = ParseDeviceLine(line, channels);
    const auto same = [&](const NConfiguration::Device& other) {
      return other.channel == device.channel && other.device.nodeId == device.device.nodeId;
    };
    if (std::any_of(devices.begin(), devices.end(), same)) {
      throw std::runtime_error("device \"" + line + "\": this node-ID is there twice on the channel");
    }
    devices.push_back(std::move(device));
  }
  return devices;
}

}  // namespace NWorkbench
