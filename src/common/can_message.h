#pragma once
// The module's CAN message object.

#include <cstdint>
#include <vector>

#include "com/com_ptr.h"
#include "sdk/can_message.h"

namespace NCommon {

/// What a CAN message object is made from.
struct CanMessageRecord {
  std::uint32_t identifier = 0;  ///< bit 31 may mark a 29-bit identifier; it is never handed out
  std::uint32_t extended = 0;    ///< non-zero: 29-bit identifier
  std::uint32_t channel = 0;     ///< CAN channel of the host, from 1
  std::uint32_t direction = 0;   ///< an NSdk::CanDirection
  std::uint32_t remote = 0;      ///< non-zero: remote frame
  std::int64_t time_ns = 0;      ///< since the start of the measurement; not persisted
  std::vector<std::uint8_t> data;
};

/// A message object, which also offers NSdk::IPersistentObject under the keys "CAN_ID", "Extended",
/// "Channel", "Dir", "RTR" (decimal) and "Data" (decimal bytes, one blank between them). Throws
/// std::bad_alloc.
NCom::ComPtr<NSdk::ICANMessage> MakeCanMessage(CanMessageRecord record);

}  // namespace NCommon
