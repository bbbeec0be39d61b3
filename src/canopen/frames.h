#pragma once
// The CAN frame that an item sends (CiA 301). SDO transfers are the SDO engine's matter.

#include <cstdint>
#include <optional>
#include <span>

#include "canopen/item.h"
#include "canopen/records.h"
#include "sdk/can_frame.h"

namespace NCanopen {

/// No data.
NSdk::CanFrame SyncFrame(const SyncRecord& record);

/// 8 bytes: error code, low byte first; error register; five manufacturer-specific bytes.
NSdk::CanFrame EmcyFrame(const EmcyRecord& record);

/// Heartbeat or guarding reply, 1 byte: node state in bits 0..6, toggle bit as stored in bit 7.
NSdk::CanFrame StateFrame(const StateRecord& record);

/// Identifier 0, 2 bytes: command specifier, node-ID (0 = all nodes).
NSdk::CanFrame NmtFrame(std::uint8_t command, std::uint8_t nodeId);

/// Remote frame; only the low four bits of the DLC count.
NSdk::CanFrame RtrFrame(const RtrRecord& record);

/// `data` is the encoded data text. Its count goes into a 4-bit field, so it counts modulo 16, and 9..15
/// become 8: 12 bytes give a frame of 8, 16 bytes an empty one.
NSdk::CanFrame PdoFrame(std::uint32_t cobId, std::span<const std::uint8_t> data);

/// The frame of an item that needs nothing but its record: SYNC, EMCY, HBEAT, GUARD, NMT, RTR. Nothing for
/// the others.
std::optional<NSdk::CanFrame> FrameOf(const ZMsgItemInfo& item);

}  // namespace NCanopen
