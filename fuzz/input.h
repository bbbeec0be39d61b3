#pragma once

#include <cstddef>
#include <cstdint>

namespace NFuzz {

/// What a fuzzer has made, read from the front; zeros when it is used up.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : mData(data), mLeft(size) {}

  bool IsEmpty() const { return mLeft == 0; }

  std::uint8_t Byte() {
    if (mLeft == 0) return 0;
    --mLeft;
    return *mData++;
  }

  /// Little-endian.
  std::uint32_t Number(int bytes = 4) {
    std::uint32_t number = 0;
    for (int i = 0; i < bytes; ++i) number |= std::uint32_t{Byte()} << (8 * i);
    return number;
  }
  std::uint16_t Word() { return static_cast<std::uint16_t>(Number(2)); }

 private:
  const std::uint8_t* mData;
  std::size_t mLeft;
};

}  // namespace NFuzz
