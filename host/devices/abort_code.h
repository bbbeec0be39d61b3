#pragma once

#include <cstdint>

namespace NDevices {

/// Why an access to an object is refused or a transfer ends (CiA 301, 7.2.4.3.17), the codes that the
/// simulated devices use by themselves. Any number may be converted to one.
enum class AbortCode : std::uint32_t {
  None = 0,
  ToggleBit = 0x05030000,
  TimedOut = 0x05040000,
  UnknownCommand = 0x05040001,
  BlockSize = 0x05040002,
  SequenceNumber = 0x05040003,
  Crc = 0x05040004,
  UnsupportedAccess = 0x06010000,
  WriteOnly = 0x06010001,
  ReadOnly = 0x06010002,
  NoObject = 0x06020000,
  NotMappable = 0x06040041,
  PdoTooLong = 0x06040042,
  LengthTooHigh = 0x06070012,
  LengthTooLow = 0x06070013,
  NoSubindex = 0x06090011,
  InvalidValue = 0x06090030,
  ValueTooHigh = 0x06090031,
  ValueTooLow = 0x06090032,
  NoData = 0x08000024,
};

}  // namespace NDevices
