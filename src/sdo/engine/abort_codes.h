#pragma once
// SDO abort codes (CiA 301, 7.2.4.3.17). The engine names a code by its place in this table.

#include <cstdint>

namespace NSdo {

inline constexpr std::uint32_t kSdoAbortCodes[] = {
    0x00000000,  // no error
    0x05030000,  // toggle bit not alternated
    0x05040000,  // SDO protocol timed out
    0x05040001,  // command specifier not valid or unknown
    0x05040002,  // invalid block size
    0x05040003,  // invalid sequence number
    0x05040004,  // CRC error
    0x05040005,  // out of memory
    0x06010000,  // unsupported access to an object
    0x06010001,  // read of a write-only object
    0x06010002,  // write of a read-only object
    0x06020000,  // object does not exist
    0x06040041,  // object cannot be mapped to the PDO
    0x06040042,  // mapped objects would exceed the PDO length
    0x06040043,  // general parameter incompatibility
    0x06040047,  // general internal incompatibility in the device
    0x06060000,  // access failed due to a hardware error
    0x06070010,  // data type or length does not match
    0x06070012,  // length too high
    0x06070013,  // length too low
    0x06090011,  // sub-index does not exist
    0x06090030,  // invalid value
    0x06090031,  // value too high
    0x06090032,  // value too low
    0x06090036,  // maximum less than minimum
    0x060A0023,  // resource not available
    0x08000000,  // general error
    0x08000020,  // data cannot be transferred or stored
    0x08000021,  // ... because of local control
    0x08000022,  // ... because of the present device state
    0x08000023,  // no object dictionary
};
inline constexpr std::uint8_t kSdoAbortCodeCount = sizeof(kSdoAbortCodes) / sizeof(kSdoAbortCodes[0]);
static_assert(kSdoAbortCodeCount == 31);

/// Places in kSdoAbortCodes that the engine itself uses.
enum SdoAbortIndex : std::uint8_t {
  kAbortNone = 0,
  kAbortToggle = 1,
  kAbortTimeout = 2,
  kAbortCommand = 3,
  kAbortBlockSize = 4,
  kAbortSequence = 5,
  kAbortCrc = 6,
  kAbortOutOfMemory = 7,
  kAbortWriteOnly = 9,
  kAbortReadOnly = 10,
  kAbortNoObject = 11,
  kAbortParameter = 14,
  kAbortLength = 17,
  kAbortLengthTooHigh = 18,
  kAbortNoSubindex = 20,
  kAbortInvalidValue = 21,
  kAbortValueTooLow = 23,
  kAbortLocalControl = 28,
};

}  // namespace NSdo
