#include "host/devices/data_type.h"

#include <algorithm>
#include <bit>

namespace NDevices {
namespace {

enum class Order { None, Unsigned, Signed, Real };

struct TypeRow {
  DataType type;
  std::uint8_t size;
  Order order;
};

// What is not here varies in length and has no order.
constexpr TypeRow kTypes[] = {
    {DataType::Boolean, 1, Order::Unsigned},    {DataType::Integer8, 1, Order::Signed},
    {DataType::Integer16, 2, Order::Signed},    {DataType::Integer24, 3, Order::Signed},
    {DataType::Integer32, 4, Order::Signed},    {DataType::Integer40, 5, Order::Signed},
    {DataType::Integer48, 6, Order::Signed},    {DataType::Integer56, 7, Order::Signed},
    {DataType::Integer64, 8, Order::Signed},    {DataType::Unsigned8, 1, Order::Unsigned},
    {DataType::Unsigned16, 2, Order::Unsigned}, {DataType::Unsigned24, 3, Order::Unsigned},
    {DataType::Unsigned32, 4, Order::Unsigned}, {DataType::Unsigned40, 5, Order::Unsigned},
    {DataType::Unsigned48, 6, Order::Unsigned}, {DataType::Unsigned56, 7, Order::Unsigned},
    {DataType::Unsigned64, 8, Order::Unsigned}, {DataType::Real32, 4, Order::Real},
    {DataType::Real64, 8, Order::Real},         {DataType::TimeOfDay, 6, Order::None},
    {DataType::TimeDifference, 6, Order::None},
};

TypeRow RowOf(DataType type) {
  const auto row = std::ranges::find(kTypes, type, &TypeRow::type);
  return row != std::end(kTypes) ? *row : TypeRow{type, 0, Order::None};
}

std::int64_t ReadSigned(BytesView bytes) {
  const auto unusedBits = static_cast<int>(64 - 8 * bytes.size());
  return static_cast<std::int64_t>(ReadLittleEndian(bytes) << unusedBits) >> unusedBits;
}

double ReadReal(BytesView bytes) {
  const std::uint64_t bits = ReadLittleEndian(bytes);
  if (bytes.size() == sizeof(double)) return std::bit_cast<double>(bits);
  return std::bit_cast<float>(static_cast<std::uint32_t>(bits));
}

}  // namespace

std::uint32_t FixedSize(DataType type) { return RowOf(type).size; }

bool IsLess(DataType type, BytesView a, BytesView b) {
  const TypeRow row = RowOf(type);
  if (row.order == Order::None || a.size() != row.size || b.size() != row.size) return false;
  if (row.order == Order::Signed) return ReadSigned(a) < ReadSigned(b);
  if (row.order == Order::Real) return ReadReal(a) < ReadReal(b);
  return ReadLittleEndian(a) < ReadLittleEndian(b);
}

std::uint64_t ReadLittleEndian(BytesView bytes) {
  std::uint64_t value = 0;
  for (std::size_t i = std::min<std::size_t>(bytes.size(), 8); i > 0; --i) value = value << 8 | bytes[i - 1];
  return value;
}

void WriteLittleEndian(std::span<std::uint8_t> bytes, std::uint64_t value) {
  for (std::uint8_t& byte : bytes) {
    byte = static_cast<std::uint8_t>(value);
    value >>= 8;
  }
}

}  // namespace NDevices
