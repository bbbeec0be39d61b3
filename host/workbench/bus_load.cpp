#include "host/workbench/bus_load.h"

#include "host/buses/frame_time.h"

namespace NWorkbench {

void BusLoad::Add(const NRuntime::SeenFrame& seen) {
  ++(seen.direction == NSdk::kCanTransmitted ? mTransmitted : mReceived);
  mBits += NBuses::FrameBits(seen.frame) + NBuses::kIntermissionBits;
}

void BusLoad::EndSpan(NRuntime::Time now) {
  const auto span = std::chrono::duration<double>(now - mSpanStart).count();
  if (mBitRate && span > 0) mLoad = 100.0 * static_cast<double>(mBits) / (*mBitRate * span);
  mBits = 0;
  mSpanStart = now;
}

}  // namespace NWorkbench
