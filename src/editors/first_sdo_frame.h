#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "canopen/records.h"
#include "sdk/can_frame.h"

namespace NEditors {

/// The frame with which a transfer begins, as the engine sends it. `data` is what a download carries. Empty:
/// the engine would refuse the transfer.
std::optional<NSdk::CanFrame> FirstSdoFrame(const NCanopen::SdoRecord& record,
                                            std::span<const std::uint8_t> data);

}  // namespace NEditors
