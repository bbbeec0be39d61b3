#pragma once
// What the item kinds have in common beside their record: used by message_items.h and flow_items.h.

#include "canopen/item.h"

namespace NCanopen {

/// "%lu ms"
std::string MillisecondsText(std::uint32_t milliseconds);

template <class Record>
class RecordItem : public ZMsgItemInfo {
 public:
  Record record;  // edited in place

 protected:
  using ZMsgItemInfo::ZMsgItemInfo;
};

/// `Kind` is the deriving class; it names itself by kName and kCode and adds its attributes line.
template <class Kind, class Record>
class KindItem : public RecordItem<Record> {
 public:
  const char* GetTypeName() const override { return Kind::kName; }
  std::uint32_t GetTypeCode() const override { return Kind::kCode; }
  bool Edit(void* parentWindow, const EditContext* context) override {
    return EditItem(*this, parentWindow, context);
  }

 protected:
  explicit KindItem(const bool* hexDisplay) : RecordItem<Record>(hexDisplay) {}

  /// Copies an item of the same kind; of another kind it takes the display switch alone and keeps the
  /// defaults.
  explicit KindItem(const ZMsgItemInfo& source) : RecordItem<Record>(source.HexDisplay()) {
    if (const auto* same = dynamic_cast<const Kind*>(&source)) {
      this->SetEnabled(same->GetEnabled());
      this->record = same->record;
    }
  }
};

/// A kind that is sent as a message and so may stand in the cyclic list.
template <class Kind, class Record>
class MessageItem : public KindItem<Kind, Record> {
 public:
  std::string GetCycleText() const override { return MillisecondsText(this->GetCycle()); }
  std::string GetDelayText() const override { return MillisecondsText(this->GetDelay()); }
  std::uint32_t GetCycle() const override { return this->record.cycle_ms; }
  std::uint32_t GetDelay() const override { return this->record.delay_ms; }

 protected:
  using KindItem<Kind, Record>::KindItem;
};

/// A kind that steers a sequence; it has neither cycle nor delay.
template <class Kind, class Record>
class FlowItem : public KindItem<Kind, Record> {
 public:
  std::string GetCycleText() const override { return "-"; }
  std::string GetDelayText() const override { return "-"; }
  std::uint32_t GetCycle() const override { return 0; }
  std::uint32_t GetDelay() const override { return 0; }

 protected:
  using KindItem<Kind, Record>::KindItem;
};

}  // namespace NCanopen
