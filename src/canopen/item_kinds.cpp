#include "canopen/item_kinds.h"

#include <algorithm>
#include <stdexcept>
#include <type_traits>

#include "canopen/fields.h"
#include "canopen/flow_items.h"
#include "canopen/message_items.h"

namespace NCanopen {

namespace {

constexpr auto kHex = Encoding::Hexadecimal;
constexpr auto kDec = Encoding::Decimal;

constexpr Entry kNode = {NumberBase::Decimal, Check::Range, kFirstNodeId, kLastNodeId};
constexpr Entry kNodeOrAll = {NumberBase::Decimal, Check::Range, kAllNodes, kLastNodeId};
constexpr Entry kCanId = {NumberBase::Hexadecimal, Check::CanId, 0, kIdentifierMask};
constexpr Entry kStandardId = {NumberBase::Hexadecimal, Check::AtMost, 0, kStandardIdentifierMask};
constexpr Entry kDlc = {NumberBase::Decimal, Check::Range, 0, 8};
constexpr Entry kAnyNumber = {NumberBase::Decimal, Check::AtMost, 0, 0xFFFFFFFF};
constexpr Entry kByte = {NumberBase::FollowsDisplay, Check::AtMost, 0, 0xFF};
constexpr Entry kByteRange = {NumberBase::FollowsDisplay, Check::Range, 0, 0xFF};
constexpr Entry kWord = {NumberBase::FollowsDisplay, Check::AtMost, 0, 0xFFFF};
constexpr Entry kIndex = {NumberBase::Hexadecimal, Check::Range, 0x1000, 0xFFFF};
constexpr Entry kState = {NumberBase::FollowsDisplay, Check::Range, 0, kNodeStateMask};
constexpr Entry kPause = {NumberBase::Decimal, Check::Range, 1, 2000000};
constexpr Entry kFlag = {NumberBase::Decimal, Check::None, 0, 1};

template <class Record>
constexpr ItemField Cycle() {
  return Number<&Record::cycle_ms>("SendCycle", kDec, kAnyNumber, InFile::CyclicOnly);
}
template <class Record>
constexpr ItemField Delay() {
  return Number<&Record::delay_ms>("SendDelay", kDec, kAnyNumber, InFile::CyclicOnly);
}

constexpr ItemField kPdoFields[] = {
    Number<&PdoRecord::cobId>("COBID", kHex, kCanId),
    Text<&PdoRecord::data>("Data"),
    Number<&PdoRecord::dlc>("DLC", kDec, kDlc),
    Number<&PdoRecord::nodeId>("NodeID", kDec, kNode),
    Number<&PdoRecord::autoSize>("AutoSize", kDec, kFlag),
    Cycle<PdoRecord>(),
    Delay<PdoRecord>(),
};

constexpr ItemField kSdoFields[] = {
    Number<&SdoRecord::nodeId>("NodeID", kDec, kNodeOrAll),
    Number<&SdoRecord::cobIdTx>("COBIDTx", kHex, kCanId),
    Number<&SdoRecord::cobIdRx>("COBIDRx", kHex, kCanId),
    Text<&SdoRecord::data>("Data"),
    Number<&SdoRecord::index>("Index", kHex, kIndex),
    Number<&SdoRecord::subIndex>("SubIndex", kHex, kByteRange),
    Number<&SdoRecord::blockTransfer>("BlockTransfer", kDec, kFlag),
    Number<&SdoRecord::autoSize>("AutoSize", kDec, kFlag),
    Number<&SdoRecord::objectSize>("ObjectSize", kDec, kAnyNumber),
    Number<&SdoRecord::autoCanId>("AutoCANID", kDec, kFlag),
    Cycle<SdoRecord>(),
    Delay<SdoRecord>(),
    Number<&SdoRecord::upload>("Upload", kDec, kFlag),
};

constexpr ItemField kNmtFields[] = {
    Number<&NmtRecord::nodeId>("NodeID", kDec, kNodeOrAll),
    Number<&NmtRecord::command>("NMTState", kDec, kByteRange),
    Cycle<NmtRecord>(),
    Delay<NmtRecord>(),
};

constexpr ItemField kSyncFields[] = {
    Number<&SyncRecord::cobId>("COBID", kHex, kCanId, InFile::Required),
    Cycle<SyncRecord>(),
    Delay<SyncRecord>(),
};

constexpr ItemField kEmcyFields[] = {
    Number<&EmcyRecord::nodeId>("NodeID", kDec, kNode),
    Number<&EmcyRecord::cobId>("COBID", kHex, kCanId),
    Number<&EmcyRecord::errorCode>("ErrCode", kHex, kWord),
    Number<&EmcyRecord::errorRegister>("Errreg", kHex, kByte),
    ManufacturerByte<0>("ManSpec1", kByte),
    ManufacturerByte<1>("ManSpec2", kByte),
    ManufacturerByte<2>("ManSpec3", kByte),
    ManufacturerByte<3>("ManSpec4", kByte),
    ManufacturerByte<4>("ManSpec5", kByte),
    Cycle<EmcyRecord>(),
    Delay<EmcyRecord>(),
};

constexpr ItemField kHeartbeatFields[] = {
    Number<&StateRecord::nodeId>("NodeID", kDec, kNode),
    Number<&StateRecord::cobId>("COBID", kHex, kStandardId),
    WholeState("NMTState", kState),
    Cycle<StateRecord>(),
    Delay<StateRecord>(),
};

// A guarding item's node-ID is written for the reader's eye only; existing files are read without it.
constexpr ItemField kGuardFields[] = {
    Number<&StateRecord::nodeId>("NodeID", kDec, kNode, InFile::WrittenOnly),
    Number<&StateRecord::cobId>("COBID", kHex, kStandardId, InFile::Required),
    StateBits("NMTState", kState),
    StateToggle("ToggleBitStartValue", kFlag),
    Cycle<StateRecord>(),
    Delay<StateRecord>(),
};

constexpr ItemField kRtrFields[] = {
    Number<&RtrRecord::nodeId>("NodeID", kDec, kNode, InFile::Absent),
    Number<&RtrRecord::cobId>("COBID", kHex, kCanId),
    Number<&RtrRecord::dlc>("DLC", kDec, kDlc),
    Cycle<RtrRecord>(),
    Delay<RtrRecord>(),
};

constexpr ItemField kPauseFields[] = {
    Number<&PauseRecord::length_ms>("PauseMilliSec", kDec, kPause),
};

constexpr ItemField kCyclicStateFields[] = {
    Number<&CyclicStateRecord::start>("StartFlag", kDec, kFlag),
};

template <class Item>
constexpr auto NodeMaker() -> decltype(ItemKind::makeForNode) {
  if constexpr (std::is_constructible_v<Item, const bool*, std::uint32_t, std::uint32_t>) {
    return [](const bool* hexDisplay, std::uint32_t nodeId, std::uint32_t cobId) {
      return std::unique_ptr<ZMsgItemInfo>(std::make_unique<Item>(hexDisplay, nodeId, cobId));
    };
  } else if constexpr (std::is_constructible_v<Item, const bool*, std::uint32_t>) {
    return [](const bool* hexDisplay, std::uint32_t nodeId, std::uint32_t) {
      return std::unique_ptr<ZMsgItemInfo>(std::make_unique<Item>(hexDisplay, nodeId));
    };
  } else {
    return nullptr;
  }
}

template <class Item>
constexpr ItemKind Kind(bool isMessage, std::span<const ItemField> fields) {
  return {Item::kName,
          Item::kCode,
          isMessage,
          fields,
          [](const bool* hexDisplay) -> std::unique_ptr<ZMsgItemInfo> {
            return std::make_unique<Item>(hexDisplay);
          },
          [](const ZMsgItemInfo& source) -> std::unique_ptr<ZMsgItemInfo> {
            return std::make_unique<Item>(source);
          },
          NodeMaker<Item>()};
}

constexpr ItemKind kKinds[] = {
    Kind<ZPDOItemInfo>(true, kPdoFields),        Kind<ZSDOItemInfo>(true, kSdoFields),
    Kind<ZNMTItemInfo>(true, kNmtFields),        Kind<ZSyncItemInfo>(true, kSyncFields),
    Kind<ZEmcyItemInfo>(true, kEmcyFields),      Kind<ZHBeatItemInfo>(true, kHeartbeatFields),
    Kind<ZGuardingItemInfo>(true, kGuardFields), Kind<ZRTRItemInfo>(true, kRtrFields),
    Kind<ZPauseItemInfo>(false, kPauseFields),   Kind<ZCycSendStateItemInfo>(false, kCyclicStateFields),
};

template <class Predicate>
const ItemKind* FindKind(Predicate predicate) {
  const auto* found = std::ranges::find_if(kKinds, predicate);
  return found != std::end(kKinds) ? found : nullptr;
}

}  // namespace

std::span<const ItemKind> ItemKinds() { return kKinds; }

const ItemKind* FindItemKind(std::string_view name) {
  return FindKind([name](const ItemKind& kind) { return kind.name == name; });
}

const ItemKind* FindItemKind(std::uint32_t code) {
  return FindKind([code](const ItemKind& kind) { return kind.code == code; });
}

const ItemKind& KindOf(const ZMsgItemInfo& item) {
  if (const ItemKind* kind = FindItemKind(item.GetTypeCode())) return *kind;
  throw std::logic_error("item of an unknown kind");
}

const ItemField* FindField(const ItemKind& kind, std::string_view key) {
  const auto found =
      std::ranges::find_if(kind.fields, [key](const ItemField& field) { return field.key == key; });
  return found != kind.fields.end() ? &*found : nullptr;
}

std::unique_ptr<ZMsgItemInfo> CopyItem(const ZMsgItemInfo& item) { return KindOf(item).copy(item); }

}  // namespace NCanopen
