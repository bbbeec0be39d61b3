#pragma once

#include <string>
#include <string_view>

#include "host/devices/misbehaviour.h"

namespace NDevices {

/// A simulated device as a user names it: NODE, or NODE:FILE with a description of its objects, and behind it
/// how it misbehaves: ,OPTION or ,OPTION=VALUE. A file whose name has a comma stands in double quotes.
struct DeviceWord {
  unsigned char nodeId = 0;  ///< 1..127
  std::string description;   ///< path of the file in UTF-8, empty = the built-in I/O device
  Misbehaviour faults;

  bool operator==(const DeviceWord&) const = default;
};

/// Throws std::runtime_error, one line that names the word and what is wrong with it. A file is not looked
/// at.
DeviceWord ParseDeviceWord(std::string_view word);

/// The word for a device, which is parsed into the same.
std::string DeviceWordText(const DeviceWord& device);

/// The options for a help text, one per line.
std::string DescribeDeviceOptions();

}  // namespace NDevices
