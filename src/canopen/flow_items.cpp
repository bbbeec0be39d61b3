#include "canopen/flow_items.h"

namespace NCanopen {

std::string ZPauseItemInfo::GetAttributesText() const { return MillisecondsText(record.length_ms); }

std::string ZCycSendStateItemInfo::GetAttributesText() const { return record.start != 0 ? "Start" : "Stop"; }

}  // namespace NCanopen
