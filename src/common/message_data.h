#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "sdk/can_message.h"

namespace NCommon {

/// The data of a CAN message; bytes beyond its size are zero.
struct MessageData {
  std::array<std::uint8_t, 8> bytes{};
  std::uint32_t size = 0;  ///< 0..8, whatever length the message claims

  /// Little-endian.
  std::uint16_t Word(std::size_t offset) const {
    return static_cast<std::uint16_t>(bytes[offset] | (bytes[offset + 1] << 8));
  }
  std::uint32_t Number(std::size_t offset) const {
    return Word(offset) | (std::uint32_t{Word(offset + 2)} << 16);
  }
};

/// False: the length or the bytes cannot be read.
inline bool ReadData(NSdk::ICANMessage& message, MessageData& data) {
  if (FAILED(message.GetDataLength(&data.size))) return false;
  data.size = std::min(data.size, static_cast<std::uint32_t>(data.bytes.size()));
  return SUCCEEDED(message.CopyData(0, data.bytes.data(), data.size));
}

}  // namespace NCommon
