#include "host/devices/device_word.h"

#include <charconv>
#include <stdexcept>

namespace NDevices {
namespace {

constexpr unsigned kMaxNode = 127;

[[noreturn]] void Refuse(std::string_view word, const std::string& reason) {
  throw std::runtime_error("device \"" + std::string(word) + "\": " + reason);
}

}  // namespace

DeviceWord ParseDeviceWord(std::string_view word) {
  const std::size_t colon = word.find(':');
  const std::string_view number = word.substr(0, colon);
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
  DeviceWord device = {static_cast<unsigned char>(node), {}};
  if (colon == std::string_view::npos) return device;
  device.description = word.substr(colon + 1);
  if (device.description.empty()) Refuse(word, "the name of a file is missing after the colon");
  return device;
}

}  // namespace NDevices
