#pragma once

#include "host/devices/data_type.h"

namespace NDevices {

/// CRC of block transfers (CiA 301, 7.2.4.3.16): x^16 + x^12 + x^5 + 1, most significant bit first.
/// `crc` is that of the bytes before, 0 at the beginning.
std::uint16_t BlockCrc(BytesView bytes, std::uint16_t crc = 0);

}  // namespace NDevices
