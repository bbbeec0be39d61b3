#pragma once

#include <array>
#include <cstdint>

#include "sdo/engine/list.h"
#include "sdo/engine/status.h"

namespace NSdo {

/// Flag of a COB-ID whose frames go to the SDO client.
inline constexpr std::uint8_t SDO_FILTER_CLIENT = 32;

/// One flag byte per COB-ID: a table for 11-bit identifiers, a sorted list for the rest (29-bit identifiers
/// carry bit 29).
class SdoReceiveFilter {
 public:
  /// Clears every flag and makes room for one 29-bit identifier per channel. SDO_E_LIST: no memory.
  SdoStatus Reset();

  /// 0 if nobody wants these frames.
  std::uint8_t Flags(std::uint32_t cobId) const {
    if (cobId < mStandard.size()) return mStandard[cobId];
    const Entry* entry = mOthers.Find(cobId);
    return entry != nullptr ? entry->flags : std::uint8_t{0};
  }

  /// SDO_E_COBID_IN_USE if the COB-ID has any flag already, SDO_E_LIST without memory.
  SdoStatus Set(std::uint32_t cobId, std::uint8_t flags);
  void Clear(std::uint32_t cobId);

 private:
  struct Entry {
    std::uint32_t cobId;
    std::uint8_t flags;
  };
  static constexpr std::uint32_t KeyOf(const Entry& entry) { return entry.cobId; }

  std::array<std::uint8_t, 0x800> mStandard = {};
  SdoList<Entry, &KeyOf> mOthers;
};

}  // namespace NSdo
