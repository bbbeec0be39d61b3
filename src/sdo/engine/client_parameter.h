#pragma once

#include "sdo/engine/object_dictionary.h"

namespace NSdo {

/// Dictionary entry of a channel's SDO client parameter record, 1280h + channel - 1 (CiA 301, 7.5.2.33).
SdoOdEntry ClientParameterEntry(std::uint8_t channel);

/// Does any channel use this COB-ID, in either direction?
bool IsCobIdUsed(const SdoEngine& engine, std::uint32_t cobId);

}  // namespace NSdo
