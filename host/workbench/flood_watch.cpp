#include "host/workbench/flood_watch.h"

#include <utility>

namespace NWorkbench {
namespace {

// 3000 frames per second: more than a segmented SDO transfer brings, each frame of which waits for an answer.
constexpr std::chrono::milliseconds kSpan{100};
constexpr int kFlood = 300;
constexpr std::chrono::seconds kEbb{1};

}  // namespace

bool FloodWatch::Add(NRuntime::Time now) {
  if (now >= mSpanBegin + kSpan) {
    mSpanBegin = now;
    mFrames = 0;
  }
  if (++mFrames < kFlood) return false;
  mLast = now;
  return !std::exchange(mIsFlood, true);
}

bool FloodWatch::HasEnded(NRuntime::Time now) {
  return now >= mLast + kEbb && std::exchange(mIsFlood, false);
}

}  // namespace NWorkbench
