#include "sdo/engine/crc.h"

#include <array>

namespace NSdo {

namespace {

constexpr std::size_t kStride = 8;
using CrcTable = std::array<std::uint16_t, 256>;

// table[k][b]: what byte b contributes when k more bytes follow it, so that eight bytes are taken at once.
constexpr std::array<CrcTable, kStride> MakeTables() {
  std::array<CrcTable, kStride> tables{};
  for (unsigned byte = 0; byte < 256; ++byte) {
    unsigned crc = byte << 8;
    for (int bit = 0; bit < 8; ++bit) crc = (crc << 1) ^ ((crc & 0x8000) != 0 ? 0x1021u : 0u);
    tables[0][byte] = static_cast<std::uint16_t>(crc);
  }
  for (std::size_t k = 1; k < kStride; ++k) {
    for (unsigned byte = 0; byte < 256; ++byte) {
      const unsigned crc = tables[k - 1][byte];
      tables[k][byte] = static_cast<std::uint16_t>((crc << 8) ^ tables[0][crc >> 8 & 0xFF]);
    }
  }
  return tables;
}

constexpr std::array<CrcTable, kStride> kTables = MakeTables();

}  // namespace

std::uint16_t SdoCrc(const std::uint8_t* data, std::size_t size) {
  unsigned crc = 0;
  for (; size >= kStride; size -= kStride, data += kStride) {
    crc = kTables[7][data[0] ^ (crc >> 8)] ^ kTables[6][data[1] ^ (crc & 0xFF)] ^ kTables[5][data[2]] ^
          kTables[4][data[3]] ^ kTables[3][data[4]] ^ kTables[2][data[5]] ^ kTables[1][data[6]] ^
          kTables[0][data[7]];
  }
  for (; size != 0; --size, ++data) crc = ((crc << 8) & 0xFFFF) ^ kTables[0][(crc >> 8) ^ *data];
  return static_cast<std::uint16_t>(crc);
}

}  // namespace NSdo
