#pragma once
// CAN messages as candump writes them: "705#7F", "702#R".

#include <cstdlib>
#include <string>

#include "common/can_message.h"

namespace NTest {

inline NCom::ComPtr<NSdk::ICANMessage> Message(std::uint32_t channel, const std::string& text) {
  NCommon::CanMessageRecord record;
  const std::size_t mark = text.find('#');
  record.identifier = static_cast<std::uint32_t>(std::strtoul(text.substr(0, mark).c_str(), nullptr, 16));
  record.channel = channel;
  record.remote = text.substr(mark + 1, 1) == "R";
  for (std::size_t digit = mark + 1; !record.remote && digit + 1 < text.size(); digit += 2) {
    record.data.push_back(
        static_cast<std::uint8_t>(std::strtoul(text.substr(digit, 2).c_str(), nullptr, 16)));
  }
  return NCommon::MakeCanMessage(std::move(record));
}

}  // namespace NTest
