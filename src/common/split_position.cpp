#include "common/split_position.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace NCommon {

int SplitPosition::At(int length, int leastFirst, int leastSecond) const {
  if (length <= 0) return 0;
  const std::int64_t least = std::int64_t{leastFirst} + leastSecond;
  if (length < least) return static_cast<int>(std::int64_t{length} * leastFirst / least);
  return std::clamp(static_cast<int>(std::lround(mShare * length)), leastFirst, length - leastSecond);
}

void SplitPosition::MoveTo(int position, int length) {
  if (length > 0) mShare = std::clamp(static_cast<double>(position) / length, 0.0, 1.0);
}

}  // namespace NCommon
