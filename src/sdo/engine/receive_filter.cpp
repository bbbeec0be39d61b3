#include "sdo/engine/receive_filter.h"

#include "sdo/engine/channel.h"

namespace NSdo {

SdoStatus SdoReceiveFilter::Reset() {
  mStandard.fill(0);
  return mOthers.Create(kMaxChannel) ? SDO_OK : SDO_E_LIST;
}

SdoStatus SdoReceiveFilter::Set(std::uint32_t cobId, std::uint8_t flags) {
  if (Flags(cobId) != 0) return SDO_E_COBID_IN_USE;
  if (cobId < mStandard.size()) {
    mStandard[cobId] = flags;
    return SDO_OK;
  }
  return mOthers.Insert({cobId, flags}) ? SDO_OK : SDO_E_LIST;
}

void SdoReceiveFilter::Clear(std::uint32_t cobId) {
  if (cobId < mStandard.size()) {
    mStandard[cobId] = 0;
  } else if (Entry* entry = mOthers.Find(cobId)) {
    mOthers.Remove(entry);
  }
}

}  // namespace NSdo
