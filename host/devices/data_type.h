#pragma once
// The data types of CiA 301, 7.4.7, as far as objects of a device have them.

#include <cstdint>
#include <span>

namespace NDevices {

using BytesView = std::span<const std::uint8_t>;

/// Indices under which the types stand in an object dictionary, which is also how descriptions name them.
enum class DataType : std::uint16_t {
  Boolean = 0x01,
  Integer8 = 0x02,
  Integer16 = 0x03,
  Integer32 = 0x04,
  Unsigned8 = 0x05,
  Unsigned16 = 0x06,
  Unsigned32 = 0x07,
  Real32 = 0x08,
  VisibleString = 0x09,
  OctetString = 0x0A,
  UnicodeString = 0x0B,
  TimeOfDay = 0x0C,
  TimeDifference = 0x0D,
  Domain = 0x0F,
  Integer24 = 0x10,
  Real64 = 0x11,
  Integer40 = 0x12,
  Integer48 = 0x13,
  Integer56 = 0x14,
  Integer64 = 0x15,
  Unsigned24 = 0x16,
  Unsigned40 = 0x18,
  Unsigned48 = 0x19,
  Unsigned56 = 0x1A,
  Unsigned64 = 0x1B,
};

/// Bytes of a value, 0 for types whose length varies (and for numbers that are no type).
std::uint32_t FixedSize(DataType type);

/// Is value `a` below value `b`? Both have the size of the type. Never for types without an order, and never
/// for what is not a number.
bool IsLess(DataType type, BytesView a, BytesView b);

/// The value of up to eight little-endian bytes; what lies behind them counts nothing.
std::uint64_t ReadLittleEndian(BytesView bytes);
void WriteLittleEndian(std::span<std::uint8_t> bytes, std::uint64_t value);

}  // namespace NDevices
