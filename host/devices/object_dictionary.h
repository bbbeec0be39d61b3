#pragma once
// What a device consists of for others: values under index and sub-index. A profile fills it in, and a device
// description can do the same; whoever serves it goes by nothing but what stands in the entries.

#include <vector>

#include "host/devices/abort_code.h"
#include "host/devices/data_type.h"

namespace NDevices {

using Bytes = std::vector<std::uint8_t>;

enum class Access : std::uint8_t { ReadWrite, ReadOnly, WriteOnly, Constant };

struct ObjectAddress {
  std::uint16_t index = 0;
  std::uint8_t subindex = 0;
  auto operator<=>(const ObjectAddress&) const = default;
};

/// One value. Its size is that of the type, or 0..maxSize for types whose length varies.
struct Entry {
  ObjectAddress address;
  DataType type = DataType::Unsigned32;
  Access access = Access::ReadWrite;
  Bytes value;                ///< as it is transferred: little-endian
  Bytes low, high;            ///< limits in the form of the value, empty = none
  std::uint32_t maxSize = 0;  ///< bytes; only for types whose length varies
  bool mappable = false;      ///< may stand in a PDO

  bool HasFixedSize() const { return FixedSize(type) != 0; }
};

/// Entries in the order of their addresses. Pointers to them hold until the next Add.
class ObjectDictionary {
 public:
  /// Throws std::invalid_argument if the address is taken, or if value or limits do not suit the type.
  void Add(Entry entry);

  Entry* Find(ObjectAddress address);
  const Entry* Find(ObjectAddress address) const;
  bool HasObject(std::uint16_t index) const;

  /// The number at an address, `missing` if there is no such entry.
  std::uint32_t Number(ObjectAddress address, std::uint32_t missing = 0) const;
  /// Puts a number there, whatever the access; cut to the entry's size. Nothing if there is no such entry.
  void SetNumber(ObjectAddress address, std::uint32_t value);

  /// Takes over the values of the objects from `first` to `last` out of a dictionary with the same entries.
  void CopyValues(const ObjectDictionary& from, std::uint16_t first, std::uint16_t last);

  auto begin() { return mEntries.begin(); }
  auto end() { return mEntries.end(); }
  auto begin() const { return mEntries.begin(); }
  auto end() const { return mEntries.end(); }

 private:
  std::vector<Entry>::const_iterator LowerBound(ObjectAddress address) const;

  std::vector<Entry> mEntries;
};

// What an entry says to an access from outside. None: nothing speaks against it.
AbortCode CheckReadable(const Entry& entry);
AbortCode CheckWritable(const Entry& entry);
AbortCode CheckSize(const Entry& entry, std::uint64_t size);
/// `value` has a size that suits.
AbortCode CheckLimits(const Entry& entry, BytesView value);

/// Why there is nothing at an address.
AbortCode MissingCode(const ObjectDictionary& objects, ObjectAddress address);

}  // namespace NDevices
