#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/runtime/can_message.h"

namespace NWorkbench {

/// A frame as the trace keeps it: 24 bytes.
struct TraceRow {
  std::int64_t time_ns = 0;  ///< since the start of the measurement
  std::uint32_t identifier = 0;
  std::uint8_t data[8] = {};
  std::uint8_t size = 0;  ///< of the data; of a remote frame the length that it asks for
  std::uint8_t channel = 0;
  bool extended : 1 = false;
  bool remote : 1 = false;
  bool transmitted : 1 = false;
};
static_assert(sizeof(TraceRow) == 24);

inline constexpr std::size_t kTraceRows = 1'000'000;

/// The last frames of a measurement. Rows are numbered from 0 on and keep their number; the oldest ones make
/// room for new ones.
class TraceStore {
 public:
  explicit TraceStore(std::size_t capacity = kTraceRows) : mCapacity(capacity) {}

  void Add(const NRuntime::SeenFrame& seen);
  void Clear();

  /// Number of the oldest row that is kept.
  std::uint64_t First() const { return mEnd - mRows.size(); }
  /// One behind the number of the newest row.
  std::uint64_t End() const { return mEnd; }
  /// `number` is from First() to below End().
  const TraceRow& Row(std::uint64_t number) const { return mRows[number % mCapacity]; }

 private:
  const std::size_t mCapacity;
  std::vector<TraceRow> mRows;  // a ring once it is full
  std::uint64_t mEnd = 0;
};

}  // namespace NWorkbench
