#include "editors/typed_data.h"

#include <bit>
#include <exception>
#include <locale>
#include <optional>
#include <sstream>

#include "editors/data_file.h"
#include "editors/integer_text.h"

namespace NEditors {
namespace {

using Bytes = std::vector<std::uint8_t>;

struct Prefix {
  DataType type;
  std::string_view text;
};

constexpr Prefix kPrefixes[] = {
    {kDataUnsigned, "uint:"}, {kDataSigned, "int:"},  {kDataString, "string:"}, {kDataByteArray, "bytearr:"},
    {kDataFile, "file:"},     {kDataFloat, "float:"}, {kDataDouble, "double:"},
};

std::string_view PrefixOf(DataType type) {
  for (const Prefix& prefix : kPrefixes) {
    if (prefix.type == type) return prefix.text;
  }
  return {};
}

template <class Unsigned>
Bytes LittleEndian(Unsigned value) {
  Bytes bytes(sizeof(value));
  for (auto& byte : bytes) {
    byte = static_cast<std::uint8_t>(value & 0xFF);
    value >>= 8;
  }
  return bytes;
}

std::optional<Bytes> EncodeUnsigned(std::string_view value) {
  const auto number = ReadUnsigned(value, NumberBase::Automatic);
  return number ? std::optional(LittleEndian(*number)) : std::nullopt;
}

std::optional<Bytes> EncodeSigned(std::string_view value) {
  const auto number = ReadSigned(value);
  return number ? std::optional(LittleEndian(static_cast<std::uint64_t>(*number))) : std::nullopt;
}

// What follows the first "0x", or failing that the first "0X"; all of it when there is neither.
std::string_view BehindHexadecimalPrefix(std::string_view value) {
  auto start = value.find("0x");
  if (start == std::string_view::npos) start = value.find("0X");
  return start == std::string_view::npos ? value : value.substr(start + 2);
}

// A pair is read like any hexadecimal number, so " 1" counts as 1.
std::optional<Bytes> EncodeByteArray(std::string_view value) {
  std::string digits(BehindHexadecimalPrefix(value));
  if (digits.size() % 2 != 0) digits.insert(0, 1, '0');
  Bytes bytes;
  bytes.reserve(digits.size() / 2);
  for (std::size_t position = 0; position < digits.size(); position += 2) {
    const auto pair = std::string_view(digits).substr(position, 2);
    const auto byte = ReadUnsigned(pair, NumberBase::Hexadecimal, 0xFF);
    if (!byte) return std::nullopt;
    bytes.push_back(static_cast<std::uint8_t>(*byte));
  }
  return bytes;
}

// A number too large for its width is an error, one too small becomes 0.
template <class Float, class Unsigned>
std::optional<Bytes> EncodeFloat(std::string_view value) {
  static_assert(sizeof(Float) == sizeof(Unsigned));
  std::istringstream stream{std::string(value)};
  stream.imbue(std::locale::classic());
  Float number = 0;
  if (!(stream >> number) || !stream.eof()) return std::nullopt;
  return LittleEndian(std::bit_cast<Unsigned>(number));
}

std::optional<Bytes> EncodeFloat(std::string_view value, std::uint32_t size) {
  if (size == 4) return EncodeFloat<float, std::uint32_t>(value);
  if (size == 8) return EncodeFloat<double, std::uint64_t>(value);
  return std::nullopt;
}

std::optional<Bytes> Encode(DataType type, std::string_view value, std::uint32_t size,
                            const std::filesystem::path& folder) {
  switch (type) {
    case kDataUnsigned:
      return EncodeUnsigned(value);
    case kDataSigned:
      return EncodeSigned(value);
    case kDataString:
      return Bytes(value.begin(), value.end());
    case kDataByteArray:
      return EncodeByteArray(value);
    case kDataFile:
      return ReadDataFile(value, folder, size);
    case kDataFloat:
    case kDataDouble:
      return EncodeFloat(value, size);
    case kDataUntyped:
      break;
  }
  return std::nullopt;
}

std::optional<std::uint64_t> NaturalUnsigned(std::string_view value) {
  const auto number = ReadUnsigned(value, NumberBase::Automatic);
  if (!number) return std::nullopt;
  std::uint64_t size = 1;
  while (size < 8 && (*number >> (8 * size)) != 0) ++size;
  return size;
}

// A hexadecimal number is as long as it is written, so that leading zeros can ask for more bytes.
std::optional<std::uint64_t> NaturalSigned(std::string_view value) {
  const auto number = ReadSigned(value);
  if (!number) return std::nullopt;
  if (HasHexadecimalPrefix(value)) return (value.size() - 2 + 1) / 2;
  std::uint64_t size = 1;
  // All that lies above the sign bit repeats it once the number fits.
  while (size < 8 && (*number >> (8 * size - 1)) != 0 && (*number >> (8 * size - 1)) != -1) ++size;
  return size;
}

std::optional<std::uint64_t> NaturalByteArray(std::string_view value) {
  if (value.find_first_not_of("0123456789aAbBcCdDeEfF") != std::string_view::npos) return std::nullopt;
  return (value.size() + 1) / 2;
}

std::optional<std::uint64_t> NaturalLength(std::string_view value, DataType type,
                                           const std::filesystem::path& folder) {
  switch (type) {
    case kDataUnsigned:
      return NaturalUnsigned(value);
    case kDataSigned:
      return NaturalSigned(value);
    case kDataString:
      return value.size();
    case kDataByteArray:
      return NaturalByteArray(value);
    case kDataFile:
      return folder.empty() ? std::nullopt : DataFileSize(value, folder);
    case kDataFloat:
      return 4;
    case kDataDouble:
      return 8;
    case kDataUntyped:
      break;
  }
  return std::nullopt;
}

bool EmptyKeepsLength(DataType type) {
  return type != kDataString && type != kDataByteArray && type != kDataUntyped;
}

}  // namespace

DataType GetDataType(std::string_view text) {
  for (const Prefix& prefix : kPrefixes) {
    if (text.starts_with(prefix.text)) return prefix.type;
  }
  return kDataUntyped;
}

void StripDataPrefix(std::string& text) { text.erase(0, PrefixOf(GetDataType(text)).size()); }

void AddDataPrefix(std::string& text, DataType type) { text.insert(0, PrefixOf(type)); }

bool ParseTypedData(std::string_view text, Bytes& bytes, std::uint32_t size,
                    const std::filesystem::path& folder) try {
  if (size > kMaxDataSize) return false;
  const DataType type = GetDataType(text);
  auto encoded = Encode(type, text.substr(PrefixOf(type).size()), size, folder);
  if (!encoded) return false;
  encoded->resize(size);
  bytes = std::move(*encoded);
  return true;
} catch (const std::exception&) {  // out of memory, or a path that the system cannot express
  return false;
}

bool GetNaturalLength(std::string_view value, DataType type, std::uint32_t& size,
                      const std::filesystem::path& folder) try {
  if (value.empty() && EmptyKeepsLength(type)) return true;
  const auto natural = NaturalLength(value, type, folder);
  if (!natural || *natural > UINT32_MAX) return false;
  size = static_cast<std::uint32_t>(*natural);
  return true;
} catch (const std::exception&) {
  return false;
}

}  // namespace NEditors
