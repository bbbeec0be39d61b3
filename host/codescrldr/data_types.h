#pragma once
// The data types of CiA 301, 7.4.7, and what texts mean as values of them.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace NDescriptions {

enum class ValueKind { Unknown, Unsigned, Signed, Real, Text, Octets, Unicode };

struct DataTypeRow {
  std::uint32_t code = 0;
  const char* name = "";
  std::uint32_t size = 0;  ///< bytes; 0: varies, or unknown
  ValueKind kind = ValueKind::Unknown;
};

/// Null: the number stands for no type.
const DataTypeRow* FindDataType(std::uint32_t code);

/// A number as files have them: decimal, hexadecimal behind 0x, octal behind 0; alone, or in a sum with
/// $NODEID.
struct NumberText {
  bool isNegative = false;
  bool hasNodeId = false;
  bool isOddOctal = false;  ///< it begins with 0 but is not octal: it was read as decimal
  std::uint64_t magnitude = 0;

  /// Empty: the node-ID is wanted and not known, or the sum is too large.
  std::optional<std::uint64_t> With(std::optional<std::uint32_t> nodeId) const;
};

/// Empty: no such number.
std::optional<NumberText> ParseNumber(std::string_view text);

/// The bits of an integer, extended to 64 by its sign. What does not fit is cut to the size of the type.
struct IntegerValue {
  std::uint64_t bits = 0;
  bool fits = true;
};
/// Empty: no integer type, no number, or the node-ID is not known.
std::optional<IntegerValue> ReadInteger(std::uint32_t type, std::string_view text,
                                        std::optional<std::uint32_t> nodeId);

/// A number with a point, or its bits in hexadecimal. Empty: no such type, or neither.
std::optional<double> ReadReal(std::uint32_t type, std::string_view text);

/// A value as an SDO carries it. Empty: the text does not suit the type, or the node-ID is not known.
std::optional<std::vector<std::uint8_t>> ReadBytes(std::uint32_t type, std::string_view text,
                                                   std::optional<std::uint32_t> nodeId);

/// A text without the quotation marks around it.
std::string_view Unquoted(std::string_view text);

}  // namespace NDescriptions
