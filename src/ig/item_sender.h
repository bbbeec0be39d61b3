#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "canopen/item.h"
#include "sdk/can_message.h"

namespace NIg {

/// Encodes the data text of an item into `size` bytes. A text without type prefix holds the same text behind
/// "bytearr:" afterwards, whatever the result. False: it cannot be encoded.
bool EncodeData(std::string& text, std::uint32_t size, const std::filesystem::path& dataFolder,
                std::vector<std::uint8_t>& bytes);

/// Sends an item that is one CAN frame. A PDO whose data text has no type prefix holds the same text behind
/// "bytearr:" afterwards. False: the item's data cannot be encoded, or the item is no such frame; nothing was
/// sent. Whether the bus takes the frame is not looked at. `dataFolder` is what relative "file:" data is
/// resolved against.
bool SendFrameItem(NCanopen::ZMsgItemInfo& item, NSdk::ICANOutput& output,
                   const std::filesystem::path& dataFolder);

}  // namespace NIg
