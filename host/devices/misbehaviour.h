#pragma once

#include "host/devices/abort_code.h"
#include "host/devices/frame_sink.h"

namespace NDevices {

/// How an SDO server fails its client, for trying out what the client makes of it. What concerns one segment
/// happens once per transfer, at the segment `segment`: repeated segments count on, so that a client which
/// tries again finds a server that has come to its senses.
struct Misbehaviour {
  Time answerDelay{};                 ///< every answer leaves this much later
  bool silent = false;                ///< requests are not even looked at
  std::uint32_t segment = 1;          ///< from 1
  bool wrongToggle = false;           ///< the segment, or the answer to it, has the other toggle bit
  bool wrongSequence = false;         ///< block upload: the number after the segment's; block download: the
                                      ///< acknowledge behind the segment names one more than came
  bool dropSegment = false;           ///< the segment is not sent, or taken for never received
  bool badCrc = false;                ///< block upload: a wrong CRC; block download: the right one is refused
  bool varyBlockSize = false;         ///< block download: every second sub-block is to be half as long
  AbortCode abort = AbortCode::None;  ///< ends transfers with this code,
  std::uint32_t abortAtSegment = 0;   ///< ... at this segment; 0: in answer to the request

  bool operator==(const Misbehaviour&) const = default;
};

}  // namespace NDevices
