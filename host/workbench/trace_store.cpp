#include "host/workbench/trace_store.h"

#include <algorithm>

namespace NWorkbench {
namespace {

TraceRow RowOf(const NRuntime::SeenFrame& seen) {
  TraceRow row;
  row.time_ns = seen.time.count();
  row.identifier = seen.frame.identifier;
  std::copy(std::begin(seen.frame.data), std::end(seen.frame.data), row.data);
  row.size = static_cast<std::uint8_t>(std::min<std::uint32_t>(seen.frame.flags & NSdk::kFrameDlcMask, 8));
  row.channel = static_cast<std::uint8_t>(seen.channel);
  row.extended = (seen.frame.flags & NSdk::kFrameExtended) != 0;
  row.remote = (seen.frame.flags & NSdk::kFrameRemote) != 0;
  row.transmitted = seen.direction == NSdk::kCanTransmitted;
  return row;
}

}  // namespace

// The place of a row is its number modulo the capacity from the beginning, so that nothing moves when the
// ring closes.
void TraceStore::Add(const NRuntime::SeenFrame& seen) {
  if (mRows.size() < mCapacity) {
    mRows.push_back(RowOf(seen));
  } else {
    mRows[mEnd % mCapacity] = RowOf(seen);
  }
  ++mEnd;
}

void TraceStore::Clear() {
  mRows.clear();
  mRows.shrink_to_fit();
  mEnd = 0;
}

}  // namespace NWorkbench
