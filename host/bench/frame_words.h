#pragma once

#include <string>

#include "sdk/can_frame.h"

namespace NBench {

/// What a frame says to a reader who knows CANopen's services but not its numbers: "node 5: operational",
/// "TPDO 1 of node 5". Goes by the identifiers of the pre-defined connection set (CiA 301, 7.3.3); empty for
/// a frame that is none of it.
std::string FrameInWords(const NSdk::CanFrame& frame);

/// A frame's line with its words behind it, in a column of their own.
std::string WithWords(std::string line, const NSdk::CanFrame& frame);

}  // namespace NBench
