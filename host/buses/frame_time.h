#pragma once
// What a frame is on a classical CAN bus: its bits, and its place in an arbitration.

#include <cstdint>

#include "sdk/can_frame.h"

namespace NBuses {

/// The bus is free again this many bits after a frame's end.
inline constexpr std::uint32_t kIntermissionBits = 3;

/// Bits from the start of the frame to the last one of its end, those stuffed in included.
std::uint32_t FrameBits(const NSdk::CanFrame& frame);

/// The bits that frames are compared by when they start together, most significant first: the lowest wins.
std::uint32_t ArbitrationField(const NSdk::CanFrame& frame);

}  // namespace NBuses
