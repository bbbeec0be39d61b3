#pragma once
// COB-IDs as the communication objects hold them (CiA 301, 7.5.2): the identifier and what is said about it.

#include "host/devices/data_type.h"
#include "sdk/can_frame.h"

namespace NDevices {

inline constexpr std::uint32_t kCobIdNotValid = 0x80000000;
inline constexpr std::uint32_t kCobIdNoRemote = 0x40000000;  ///< TPDO: not to be requested by a remote frame
inline constexpr std::uint32_t kCobIdSyncProducer = 0x40000000;
inline constexpr std::uint32_t kCobIdExtended = 0x20000000;

inline bool IsValid(std::uint32_t cobId) { return (cobId & kCobIdNotValid) == 0; }

inline std::uint32_t IdentifierOf(std::uint32_t cobId) {
  return cobId & ((cobId & kCobIdExtended) != 0 ? 0x1FFFFFFFu : 0x7FFu);
}

/// Does the frame carry the identifier of a valid COB-ID?
inline bool Matches(const NSdk::CanFrame& frame, std::uint32_t cobId) {
  const bool extended = (frame.flags & NSdk::kFrameExtended) != 0;
  return IsValid(cobId) && extended == ((cobId & kCobIdExtended) != 0) &&
         frame.identifier == IdentifierOf(cobId);
}

inline bool IsRemote(const NSdk::CanFrame& frame) { return (frame.flags & NSdk::kFrameRemote) != 0; }

/// Data bytes of a frame, 0..8 whatever the code says.
inline std::uint32_t LengthOf(const NSdk::CanFrame& frame) {
  const std::uint32_t length = frame.flags & NSdk::kFrameDlcMask;
  return length < 8 ? length : 8;
}

/// A data frame of so many zero bytes.
inline NSdk::CanFrame FrameTo(std::uint32_t cobId, std::uint32_t length) {
  NSdk::CanFrame frame;
  frame.identifier = IdentifierOf(cobId);
  frame.flags = length | ((cobId & kCobIdExtended) != 0 ? NSdk::kFrameExtended : 0);
  return frame;
}

}  // namespace NDevices
