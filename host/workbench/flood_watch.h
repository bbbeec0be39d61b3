#pragma once

#include "host/runtime/loop.h"

namespace NWorkbench {

/// Tells when more frames come than anybody can read: at once when it begins, and a while after it has ended.
class FloodWatch {
 public:
  /// A frame that others sent. True: with this one a flood has begun.
  bool Add(NRuntime::Time now);
  /// To be asked now and then. True: there was a flood, and it is over.
  bool HasEnded(NRuntime::Time now);

 private:
  NRuntime::Time mSpanBegin{};
  int mFrames = 0;  // in the span
  NRuntime::Time mLast{};
  bool mIsFlood = false;
};

}  // namespace NWorkbench
