#pragma once

#include <filesystem>

#include "canopen/item.h"
#include "sdk/can_message.h"

namespace NIg {

/// Sends an item that is one CAN frame. A PDO whose data text has no type prefix holds the same text behind
/// "bytearr:" afterwards. False: the item's data cannot be encoded, or the item is no such frame; nothing was
/// sent. Whether the bus takes the frame is not looked at. `dataFolder` is what relative "file:" data is
/// resolved against.
bool SendFrameItem(NCanopen::ZMsgItemInfo& item, NSdk::ICANOutput& output,
                   const std::filesystem::path& dataFolder);

}  // namespace NIg
