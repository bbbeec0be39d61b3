#pragma once

#include <cstddef>
#include <cstdint>

namespace NSdo {

/// CRC of a block transfer (CiA 301, 7.2.4.3.16): polynomial 1021h, initial value 0, most significant bit
/// first, nothing reflected or inverted. Of no bytes: 0.
std::uint16_t SdoCrc(const std::uint8_t* data, std::size_t size);

}  // namespace NSdo
