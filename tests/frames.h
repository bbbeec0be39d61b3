#pragma once
// Frames of CANopen as text, and scripts of SDO frames, for tests of either side.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "sdk/can_frame.h"

namespace NTest {

using Bytes = std::vector<std::uint8_t>;

/// "605 40 17 10 00": identifier and data, a 29-bit identifier in eight digits; "705 R": remote frame.
NSdk::CanFrame Frame(const std::string& text);
/// Of eight bytes; those that are left out are 0.
NSdk::CanFrame SdoFrame(std::uint32_t cobId, const std::string& bytes);
std::string Text(const NSdk::CanFrame& frame);
/// "01 02 03"
std::string Hex(const Bytes& bytes);
/// 1, 2, 3, ...
Bytes Counting(std::size_t size);

/// "> 40 17 10 00 < 4B 17 10 00 F4 01": hands the bytes behind each > to `request`, those behind each < to
/// `answer`, in their order.
void ForEachFrame(const std::string& script, const std::function<void(const std::string&)>& request,
                  const std::function<void(const std::string&)>& answer);

}  // namespace NTest
