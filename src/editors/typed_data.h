#pragma once
// Typed data text: how the data of a PDO or SDO is written, for example "uint:4660", "string:Hello" or
// "file:data.bin". Item text is 8-bit; nothing here throws.

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace NEditors {

/// Type codes, told apart by the prefix of the text.
enum DataType : int {
  kDataUnsigned = 1,   ///< "uint:"
  kDataSigned = 2,     ///< "int:"
  kDataString = 3,     ///< "string:", one byte per character, no terminator
  kDataByteArray = 4,  ///< "bytearr:", pairs of hexadecimal digits
  kDataFile = 5,       ///< "file:", the bytes of a file
  kDataFloat = 6,      ///< "float:"
  kDataUntyped = 7,    ///< no prefix; callers take it for a byte array
  kDataDouble = 8,     ///< "double:"
};

/// Data longer than this is refused: it would take hours on the bus, and a mistyped length must not exhaust
/// the memory.
inline constexpr std::uint32_t kMaxDataSize = 0x1000'0000;

DataType GetDataType(std::string_view text);
/// Removes the prefix; a text without one stays as it is.
void StripDataPrefix(std::string& text);
/// Puts the prefix of the type in front; kDataUntyped has none.
void AddDataPrefix(std::string& text, DataType type);

/// Encodes a typed data text into exactly `size` bytes, little-endian: what is too long is cut off, what is
/// too short is filled up with zero bytes (not with the sign). The width of a floating-point number follows
/// from `size`, 4 or 8, not from the prefix. A relative file is looked up in `folder`; only the bytes needed
/// are read. False, `bytes` untouched: the text has no type or does not fit it, the file is no regular file
/// or cannot be read, or `size` is above kMaxDataSize.
bool ParseTypedData(std::string_view text, std::vector<std::uint8_t>& bytes, std::uint32_t size,
                    const std::filesystem::path& folder);

/// Smallest size in bytes that holds a value, as the editors propose it. `value` is the text without its
/// prefix; an empty one leaves `size` untouched, except that an empty string or byte array has size 0. False,
/// `size` untouched: the value does not fit its type, or its file does not exist, is 4 GiB or longer, or no
/// folder is given.
bool GetNaturalLength(std::string_view value, DataType type, std::uint32_t& size,
                      const std::filesystem::path& folder);

}  // namespace NEditors
