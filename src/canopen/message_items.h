#pragma once
// The item kinds that are sent as CAN messages. Each is made with defaults, as a copy of any item, or (all
// but SYNC) for a node; there `cobId` 0 derives the COB-ID from the node-ID.

#include "canopen/record_item.h"
#include "canopen/records.h"

namespace NCanopen {

class ZPDOItemInfo final : public MessageItem<ZPDOItemInfo, PdoRecord> {
 public:
  static constexpr const char* kName = "PDO";
  static constexpr std::uint32_t kCode = kItemPdo;

  explicit ZPDOItemInfo(const bool* hexDisplay) : MessageItem(hexDisplay) {}
  explicit ZPDOItemInfo(const ZMsgItemInfo& source) : MessageItem(source) {}
  /// Derived: the node's first transmit PDO.
  ZPDOItemInfo(const bool* hexDisplay, std::uint32_t nodeId, std::uint32_t cobId = 0);

  std::string GetAttributesText() const override;
};

class ZSDOItemInfo final : public MessageItem<ZSDOItemInfo, SdoRecord> {
 public:
  static constexpr const char* kName = "SDO";
  static constexpr std::uint32_t kCode = kItemSdo;

  explicit ZSDOItemInfo(const bool* hexDisplay) : MessageItem(hexDisplay) {}
  explicit ZSDOItemInfo(const ZMsgItemInfo& source) : MessageItem(source) {}
  /// An explicit COB-ID replaces the transmit one alone.
  ZSDOItemInfo(const bool* hexDisplay, std::uint32_t nodeId, std::uint32_t cobId = 0);

  void SetNodeId(std::uint32_t nodeId) { NCanopen::SetNodeId(record, nodeId); }
  std::string GetAttributesText() const override;
};

class ZNMTItemInfo final : public MessageItem<ZNMTItemInfo, NmtRecord> {
 public:
  static constexpr const char* kName = "NMT";
  static constexpr std::uint32_t kCode = kItemNmt;

  explicit ZNMTItemInfo(const bool* hexDisplay) : MessageItem(hexDisplay) {}
  explicit ZNMTItemInfo(const ZMsgItemInfo& source) : MessageItem(source) {}
  /// "Start remote node" to the node, 0 = to all nodes.
  ZNMTItemInfo(const bool* hexDisplay, std::uint32_t nodeId);

  std::string GetAttributesText() const override;
};

class ZSyncItemInfo final : public MessageItem<ZSyncItemInfo, SyncRecord> {
 public:
  static constexpr const char* kName = "SYNC";
  static constexpr std::uint32_t kCode = kItemSync;

  explicit ZSyncItemInfo(const bool* hexDisplay) : MessageItem(hexDisplay) {}
  explicit ZSyncItemInfo(const ZMsgItemInfo& source) : MessageItem(source) {}

  std::string GetAttributesText() const override;
};

class ZEmcyItemInfo final : public MessageItem<ZEmcyItemInfo, EmcyRecord> {
 public:
  static constexpr const char* kName = "EMCY";
  static constexpr std::uint32_t kCode = kItemEmcy;

  explicit ZEmcyItemInfo(const bool* hexDisplay) : MessageItem(hexDisplay) {}
  explicit ZEmcyItemInfo(const ZMsgItemInfo& source) : MessageItem(source) {}
  ZEmcyItemInfo(const bool* hexDisplay, std::uint32_t nodeId);

  std::string GetAttributesText() const override;
};

class ZHBeatItemInfo final : public MessageItem<ZHBeatItemInfo, StateRecord> {
 public:
  static constexpr const char* kName = "HBEAT";
  static constexpr std::uint32_t kCode = kItemHeartbeat;

  explicit ZHBeatItemInfo(const bool* hexDisplay) : MessageItem(hexDisplay) {}
  explicit ZHBeatItemInfo(const ZMsgItemInfo& source) : MessageItem(source) {}
  ZHBeatItemInfo(const bool* hexDisplay, std::uint32_t nodeId, std::uint32_t cobId = 0);

  std::string GetAttributesText() const override;
};

class ZGuardingItemInfo final : public MessageItem<ZGuardingItemInfo, StateRecord> {
 public:
  static constexpr const char* kName = "GUARD";
  static constexpr std::uint32_t kCode = kItemGuard;

  explicit ZGuardingItemInfo(const bool* hexDisplay) : MessageItem(hexDisplay) {}
  explicit ZGuardingItemInfo(const ZMsgItemInfo& source) : MessageItem(source) {}
  ZGuardingItemInfo(const bool* hexDisplay, std::uint32_t nodeId, std::uint32_t cobId = 0);

  std::string GetAttributesText() const override;
};

class ZRTRItemInfo final : public MessageItem<ZRTRItemInfo, RtrRecord> {
 public:
  static constexpr const char* kName = "RTR";
  static constexpr std::uint32_t kCode = kItemRtr;

  explicit ZRTRItemInfo(const bool* hexDisplay) : MessageItem(hexDisplay) {}
  explicit ZRTRItemInfo(const ZMsgItemInfo& source) : MessageItem(source) {}
  /// Derived: the request for the node's guarding reply.
  ZRTRItemInfo(const bool* hexDisplay, std::uint32_t nodeId, std::uint32_t cobId = 0);

  std::string GetAttributesText() const override;
};

}  // namespace NCanopen
