#pragma once
// PDO mapping: which objects stand in a process data object, one behind the other, bit 0 of byte 0 first.

#include <vector>

#include "host/devices/object_dictionary.h"
#include "sdk/can_frame.h"

namespace NDevices {

inline constexpr std::uint16_t kMaxPdoCount = 512;
inline constexpr std::uint16_t kReceivePdoParameter = 0x1400;
inline constexpr std::uint16_t kReceivePdoMapping = 0x1600;
inline constexpr std::uint16_t kTransmitPdoParameter = 0x1800;
inline constexpr std::uint16_t kTransmitPdoMapping = 0x1A00;
inline constexpr std::uint16_t kPdoMappingOffset = 0x200;  ///< from the parameter of a PDO to its mapping

/// Sub-indices of the communication parameter (CiA 301, 7.4.8.1).
inline constexpr std::uint8_t kPdoCobId = 1;
inline constexpr std::uint8_t kPdoTransmissionType = 2;
inline constexpr std::uint8_t kPdoInhibitTime = 3;  ///< in 100 µs
inline constexpr std::uint8_t kPdoEventTimer = 5;   ///< in ms

/// Transmission types (CiA 301, 7.5.2.35 and 7.5.2.37). 1..240: with each SYNC of that count.
inline constexpr std::uint32_t kSynchronousAcyclic = 0;
inline constexpr std::uint32_t kLastSynchronous = 240;
inline constexpr std::uint32_t kRemoteOnly = 253;
inline constexpr std::uint32_t kFirstEventDriven = 254;

/// Is it one that these devices have? Sampling at SYNC for a remote frame (252) is not among them.
bool IsTransmissionType(std::uint32_t type, bool isTransmit);

enum class PdoDirection { Receive, Transmit };

/// May this object be mapped? Mapping entry: bits 31..16 index, 15..8 sub-index, 7..0 length in bits. A
/// receive PDO may map a data type, for bits that nobody takes.
AbortCode CheckMappedObject(const ObjectDictionary& objects, std::uint32_t mapping, PdoDirection direction);

/// May the first `count` entries of the mapping at `index` come into force?
AbortCode CheckMapping(const ObjectDictionary& objects, std::uint16_t index, std::uint32_t count,
                       PdoDirection direction);

/// The entries in force of one mapping.
class PdoMapping {
 public:
  /// Reads the mapping at `index`; an entry that is not allowed leaves it empty. The entries of the
  /// dictionary must stay where they are.
  void Load(ObjectDictionary& objects, std::uint16_t index, PdoDirection direction);

  bool Maps(const Entry& entry) const;
  std::uint32_t Length() const { return (mBits + 7) / 8; }  ///< in bytes, 0..8

  /// The values of the mapped objects in a frame's data.
  void Pack(std::uint8_t (&data)[8]) const;

  /// Hands each object and its new value, of the object's size, to `take(Entry&, BytesView)`.
  template <class Take>
  void Unpack(const std::uint8_t (&data)[8], Take take) const {
    std::uint64_t left = ReadLittleEndian(data);
    for (const Mapped& mapped : mMapped) {
      std::uint8_t value[8];
      const std::uint64_t mask = mapped.bits < 64 ? (std::uint64_t{1} << mapped.bits) - 1 : ~std::uint64_t{0};
      WriteLittleEndian(value, left & mask);
      if (mapped.entry) take(*mapped.entry, BytesView(value, mapped.entry->value.size()));
      left = mapped.bits < 64 ? left >> mapped.bits : 0;
    }
  }

 private:
  struct Mapped {
    Entry* entry;  // null: bits that nobody takes
    std::uint32_t bits;
  };

  std::vector<Mapped> mMapped;
  std::uint32_t mBits = 0;
};

}  // namespace NDevices
