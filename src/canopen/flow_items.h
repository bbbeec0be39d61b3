#pragma once
// The item kinds that steer a sequence instead of sending something.

#include "canopen/record_item.h"
#include "canopen/records.h"

namespace NCanopen {

class ZPauseItemInfo final : public FlowItem<ZPauseItemInfo, PauseRecord> {
 public:
  static constexpr const char* kName = "PAUSE";
  static constexpr std::uint32_t kCode = kItemPause;

  explicit ZPauseItemInfo(const bool* hexDisplay) : FlowItem(hexDisplay) {}
  explicit ZPauseItemInfo(const ZMsgItemInfo& source) : FlowItem(source) {}

  std::string GetAttributesText() const override;
};

/// Starts or stops the cyclic transmission.
class ZCycSendStateItemInfo final : public FlowItem<ZCycSendStateItemInfo, CyclicStateRecord> {
 public:
  static constexpr const char* kName = "CYCLETX";
  static constexpr std::uint32_t kCode = kItemCyclicState;

  explicit ZCycSendStateItemInfo(const bool* hexDisplay) : FlowItem(hexDisplay) {}
  explicit ZCycSendStateItemInfo(const ZMsgItemInfo& source) : FlowItem(source) {}

  std::string GetAttributesText() const override;
};

}  // namespace NCanopen
