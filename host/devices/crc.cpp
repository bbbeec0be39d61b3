#include "host/devices/crc.h"

#include <array>

namespace NDevices {
namespace {

constexpr unsigned kPolynomial = 0x1021;

constexpr std::uint16_t Remainder(unsigned byte) {
  unsigned rest = byte << 8;
  for (int bit = 0; bit < 8; ++bit) rest = (rest & 0x8000) != 0 ? rest << 1 ^ kPolynomial : rest << 1;
  return static_cast<std::uint16_t>(rest);
}

constexpr std::array<std::uint16_t, 256> kRemainders = [] {
  std::array<std::uint16_t, 256> table{};
  for (unsigned byte = 0; byte < table.size(); ++byte) table[byte] = Remainder(byte);
  return table;
}();

}  // namespace

std::uint16_t BlockCrc(BytesView bytes, std::uint16_t crc) {
  for (const std::uint8_t byte : bytes) {
    crc = static_cast<std::uint16_t>(crc << 8 ^ kRemainders[(crc >> 8 ^ byte) & 0xFF]);
  }
  return crc;
}

}  // namespace NDevices
