#pragma once
// The CAN frame record that host and module exchange.

#include <cstdint>

namespace NSdk {

/// 16 bytes.
///   byte 0..3    identifier, 11 or 29 bits, without flag bits
///   byte 4..11   data, unused bytes 0
///   byte 12..15  flags: bits 0..3 data length code, bit 4 remote frame, bit 5 extended (29-bit) identifier
struct CanFrame {
  std::uint32_t identifier = 0;
  std::uint8_t data[8] = {};
  std::uint32_t flags = 0;
};
static_assert(sizeof(CanFrame) == 16);

inline constexpr std::uint32_t kFrameDlcMask = 0x0F;
inline constexpr std::uint32_t kFrameRemote = 0x10;
inline constexpr std::uint32_t kFrameExtended = 0x20;

}  // namespace NSdk
