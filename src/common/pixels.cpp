#include "common/pixels.h"

#include <algorithm>
#include <cstddef>

namespace NCommon {
namespace {

// Sums of what a pixel covers, in parts of the old pixels.
struct Mean {
  std::uint64_t weight = 0;
  std::uint64_t parts[4] = {};

  void Add(std::uint32_t value, std::uint64_t share) {
    weight += share;
    for (int part = 0; part < 4; ++part) parts[part] += share * (value >> (8 * part) & 0xFF);
  }
  std::uint32_t Value() const {
    std::uint32_t value = 0;
    for (int part = 0; part < 4; ++part) {
      value |= static_cast<std::uint32_t>((parts[part] + weight / 2) / weight) << (8 * part);
    }
    return value;
  }
};

// Common part of old pixel `from` and new pixel `to`, in units of which an old one has `newCount` and a new
// one `oldCount`.
std::int64_t Overlap(int from, int oldCount, int to, int newCount) {
  const std::int64_t begin = std::max(std::int64_t{from} * newCount, std::int64_t{to} * oldCount);
  const std::int64_t end = std::min(std::int64_t{from + 1} * newCount, std::int64_t{to + 1} * oldCount);
  return end - begin;
}

// The part of a picture that pixel (x, y) of a resized one covers.
Mean MeanAt(const Pixels& pixels, int x, int y, int width, int height) {
  Mean mean;
  for (int row = y * pixels.height / height; row < pixels.height; ++row) {
    const std::int64_t high = Overlap(row, pixels.height, y, height);
    if (high <= 0) break;
    for (int column = x * pixels.width / width; column < pixels.width; ++column) {
      const std::int64_t wide = Overlap(column, pixels.width, x, width);
      if (wide <= 0) break;
      const auto position = static_cast<std::size_t>(row) * pixels.width + static_cast<std::size_t>(column);
      mean.Add(pixels.values[position], static_cast<std::uint64_t>(high * wide));
    }
  }
  return mean;
}

}  // namespace

Pixels Resized(const Pixels& pixels, int width, int height) {
  Pixels result = {width, height, {}};
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) result.values.push_back(MeanAt(pixels, x, y, width, height).Value());
  }
  return result;
}

}  // namespace NCommon
