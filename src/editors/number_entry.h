#pragma once
// What a user may type into the number fields of the editors, and the message that tells what was wrong.
// Field texts are 8-bit, messages are wide as the string table holds them. Each function returns false and
// sets `message`, leaving the value untouched, or returns true and stores the value. A message that is not in
// the string table raises the assertion E:"noOfChar".

#include <cstdint>
#include <string>
#include <string_view>

namespace NEditors {

/// Reads a whole text as a decimal or (`hexadecimal`) hexadecimal number of 16 or 32 bits. Blanks, one "+"
/// and in a hexadecimal field "0x" may stand in front, nothing behind; a negative number is no number.
bool ParseNumber(std::string_view text, bool hexadecimal, std::uint16_t& value, std::wstring& message);
bool ParseNumber(std::string_view text, bool hexadecimal, std::uint32_t& value, std::wstring& message);

/// Reads a number from 0 to `max`.
bool CheckMax(std::string_view text, bool hexadecimal, std::uint16_t& value, std::uint16_t max,
              std::wstring& message);
bool CheckMax(std::string_view text, bool hexadecimal, std::uint32_t& value, std::uint32_t max,
              std::wstring& message);

/// Reads a number from `min` on.
bool CheckMin(std::string_view text, bool hexadecimal, std::uint16_t& value, std::uint16_t min,
              std::wstring& message);
bool CheckMin(std::string_view text, bool hexadecimal, std::uint32_t& value, std::uint32_t min,
              std::wstring& message);

/// Reads a number from `min` to `max`.
bool CheckRange(std::string_view text, bool hexadecimal, std::uint16_t& value, std::uint16_t min,
                std::uint16_t max, std::wstring& message);
bool CheckRange(std::string_view text, bool hexadecimal, std::uint32_t& value, std::uint32_t min,
                std::uint32_t max, std::wstring& message);

/// Reads a CAN identifier, always hexadecimal: up to 7FF, or up to 1FFFFFFF with a trailing "x", which marks
/// an extended identifier and is stored as bit 29. Blanks around it do not count.
bool ParseCanId(std::string_view text, std::uint32_t& identifier, std::wstring& message,
                bool extendedAllowed);

}  // namespace NEditors
