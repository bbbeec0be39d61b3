#include "canopen/message_items.h"
#include "resources/print.h"

namespace NCanopen {

namespace {
std::uint32_t Explicit(std::uint32_t cobId, std::uint32_t derived) { return cobId != 0 ? cobId : derived; }
}  // namespace

void SetNodeId(SdoRecord& record, std::uint32_t nodeId) {
  record.nodeId = nodeId;
  if (nodeId == 0 || record.autoCanId == 0) return;
  record.cobIdTx = SdoRequestCobId(nodeId);
  record.cobIdRx = SdoResponseCobId(nodeId);
}

ZPDOItemInfo::ZPDOItemInfo(const bool* hexDisplay, std::uint32_t nodeId, std::uint32_t cobId)
    : MessageItem(hexDisplay) {
  record.nodeId = nodeId;
  record.cobId = Explicit(cobId, TpdoCobId(nodeId, 1));
}

std::string ZPDOItemInfo::GetAttributesText() const {
  // The missing blank of the decimal line is part of the text.
  return NResources::Print(ShowsHexadecimal() ? "Node-ID %lu, COBID %s, DLC %lu, Data %s"
                                              : "Node-ID %lu, COBID %s, DLC %lu,Data %s",
                           record.nodeId, CobIdText(record.cobId), record.dlc, record.data);
}

ZSDOItemInfo::ZSDOItemInfo(const bool* hexDisplay, std::uint32_t nodeId, std::uint32_t cobId)
    : MessageItem(hexDisplay) {
  SetNodeId(nodeId);
  record.cobIdTx = Explicit(cobId, record.cobIdTx);
}

std::string ZSDOItemInfo::GetAttributesText() const {
  const bool upload = record.upload != 0;
  std::string address = NResources::Print(ShowsHexadecimal() ? "%s, Node-ID %lu, COBID %s, Object %Xsub%X"
                                                             : "%s, Node-ID %lu, COBID %s, Object %Xsub%lu",
                                          upload ? "Upload" : "Download", record.nodeId,
                                          CobIdText(record.cobIdTx), record.index, record.subIndex);
  if (upload) return address;
  return NResources::Print("%s, Size %lu, Data %s", address, record.objectSize, record.data);
}

ZNMTItemInfo::ZNMTItemInfo(const bool* hexDisplay, std::uint32_t nodeId) : MessageItem(hexDisplay) {
  record.nodeId = static_cast<std::uint8_t>(nodeId);
}

std::string ZNMTItemInfo::GetAttributesText() const {
  return NResources::Print(ShowsHexadecimal() ? "Node-ID %lu, CS %X" : "Node-ID %lu, CS %lu", record.nodeId,
                           record.command);
}

std::string ZSyncItemInfo::GetAttributesText() const {
  return NResources::Print("COBID %s", CobIdText(record.cobId));
}

ZEmcyItemInfo::ZEmcyItemInfo(const bool* hexDisplay, std::uint32_t nodeId) : MessageItem(hexDisplay) {
  record.nodeId = nodeId;
  record.cobId = EmcyCobId(nodeId);
}

std::string ZEmcyItemInfo::GetAttributesText() const {
  const auto& bytes = record.manufacturer;
  return NResources::Print(
      ShowsHexadecimal() ? "Node-ID %lu, COBID %s, ErrCode %X, ErrReg %X, ManSpecific %X,%X,%X,%X,%X"
                         : "Node-ID %lu, COBID %s, ErrCode %lu, ErrReg %lu, ManSpecific %lu,%lu,%lu,%lu,%lu",
      record.nodeId, CobIdText(record.cobId), record.errorCode, record.errorRegister, bytes[0], bytes[1],
      bytes[2], bytes[3], bytes[4]);
}

ZHBeatItemInfo::ZHBeatItemInfo(const bool* hexDisplay, std::uint32_t nodeId, std::uint32_t cobId)
    : MessageItem(hexDisplay) {
  record.nodeId = nodeId;
  record.cobId = Explicit(cobId, ErrorControlCobId(nodeId));
}

std::string ZHBeatItemInfo::GetAttributesText() const {
  return NResources::Print(
      ShowsHexadecimal() ? "Node-ID %lu, COBID %s, State %X" : "Node-ID %lu, COBID %s, State %lu",
      record.nodeId, CobIdText(record.cobId), StateOf(record));
}

ZGuardingItemInfo::ZGuardingItemInfo(const bool* hexDisplay, std::uint32_t nodeId, std::uint32_t cobId)
    : MessageItem(hexDisplay) {
  record.nodeId = nodeId;
  record.cobId = Explicit(cobId, ErrorControlCobId(nodeId));
}

std::string ZGuardingItemInfo::GetAttributesText() const {
  return NResources::Print(ShowsHexadecimal() ? "Node-ID %lu, COBID %s, State %X, Toggle %lu"
                                              : "Node-ID %lu, COBID %s, State %lu, Toggle %lu",
                           record.nodeId, CobIdText(record.cobId), StateOf(record), ToggleOf(record));
}

ZRTRItemInfo::ZRTRItemInfo(const bool* hexDisplay, std::uint32_t nodeId, std::uint32_t cobId)
    : MessageItem(hexDisplay) {
  record.nodeId = nodeId;
  record.cobId = Explicit(cobId, ErrorControlCobId(nodeId));
}

std::string ZRTRItemInfo::GetAttributesText() const {
  return NResources::Print("COBID %s, DLC %lu", CobIdText(record.cobId), record.dlc);
}

}  // namespace NCanopen
