#pragma once

#include <cstdint>
#include <vector>

namespace NCommon {

/// 32-bit pixels with alpha, multiplied into the colours, row by row from the top.
struct Pixels {
  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> values;
};

/// The same picture in another size: each new pixel is the mean of what it covers. Whole multiples stay
/// exact.
Pixels Resized(const Pixels& pixels, int width, int height);

}  // namespace NCommon
