#include "sdo/engine/crc.h"

#include <array>
#include <cstring>
#include <utility>

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

unsigned Continue(unsigned crc, const std::uint8_t* data, std::size_t size) {
  for (; size >= kStride; size -= kStride, data += kStride) {
    crc = kTables[7][data[0] ^ (crc >> 8)] ^ kTables[6][data[1] ^ (crc & 0xFF)] ^ kTables[5][data[2]] ^
          kTables[4][data[3]] ^ kTables[3][data[4]] ^ kTables[2][data[5]] ^ kTables[1][data[6]] ^
          kTables[0][data[7]];
  }
  for (; size != 0; --size, ++data) crc = ((crc << 8) & 0xFFFF) ^ kTables[0][(crc >> 8) ^ *data];
  return crc;
}

// Long data are first divided by the 64th power of the polynomial, which is a multiple of it. Powers of two
// keep its four terms: x^1024 + x^768 + x^320 + 1, each a whole number of 64-bit words apart. So a word is
// taken away by adding it to the 4th, 11th and 16th behind it, whatever its byte order.
constexpr std::size_t kWords = 16;
constexpr std::size_t kBlockSize = kWords * sizeof(std::uint64_t);
using Block = std::array<std::uint64_t, kWords>;

template <std::size_t Word>
std::uint64_t WordOf(const std::uint8_t* data) {
  std::uint64_t word = 0;
  std::memcpy(&word, data + Word * sizeof word, sizeof word);
  return word;
}

// `block` holds the 16 words before these, with all that was added to them.
template <std::size_t... Word>
void TakeAway(Block& block, const std::uint8_t* data, std::index_sequence<Word...>) {
  ((block[Word] ^= WordOf<Word>(data) ^ block[(Word + 12) % kWords] ^ block[(Word + 5) % kWords]), ...);
}

// The last 16 words stay: they get what the words before them add, and nothing from each other.
template <std::size_t... Word>
void AddRest(Block& block, const std::uint8_t* data, std::index_sequence<Word...>) {
  const Block before = block;
  ((block[Word] ^= WordOf<Word>(data) ^ (Word < 4 ? before[(Word + 12) % kWords] : 0) ^
                   (Word < 11 ? before[(Word + 5) % kWords] : 0)),
   ...);
}

}  // namespace

std::uint16_t SdoCrc(const std::uint8_t* data, std::size_t size) {
  if (size < 2 * kBlockSize) return static_cast<std::uint16_t>(Continue(0, data, size));
  constexpr auto kAllWords = std::make_index_sequence<kWords>();
  Block block{};
  for (; size >= 2 * kBlockSize; size -= kBlockSize, data += kBlockSize) TakeAway(block, data, kAllWords);
  AddRest(block, data, kAllWords);
  std::array<std::uint8_t, kBlockSize> rest{};
  std::memcpy(rest.data(), block.data(), kBlockSize);
  const unsigned crc = Continue(0, rest.data(), rest.size());
  return static_cast<std::uint16_t>(Continue(crc, data + kBlockSize, size - kBlockSize));
}

}  // namespace NSdo
