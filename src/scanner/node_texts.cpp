#include "scanner/node_texts.h"

#include "canopen/vocabulary.h"
#include "com/assertion.h"
#include "com/task_text.h"
#include "resources/print.h"
#include "resources/resource_ids.h"
#include "resources/text.h"
#include "scanner/node.h"

namespace NScanner {
namespace {

constexpr std::uint32_t kErrorImages = 4;  // first of those with an error mark

constexpr Column kColumns[NSdk::kScannerColumns] = {
    {IDS_SCAN_COL_ID, Alignment::Left, 50},       {IDS_SCAN_COL_STATE, Alignment::Left, 68},
    {IDS_SCAN_COL_CHANNEL, Alignment::Left, 35},  {IDS_SCAN_COL_NAME, Alignment::Left, 60},
    {IDS_SCAN_COL_MASTER, Alignment::Centre, 50}, {IDS_SCAN_COL_PRIORITY, Alignment::Centre, 50},
};

// Bits of the error register (CiA 301, object 1001h). Bit 6 is reserved and says nothing.
constexpr struct {
  std::uint32_t bit;
  std::uint32_t textId;
} kErrors[] = {
    {0, IDS_SCAN_EMCY_GENERIC},      {1, IDS_SCAN_EMCY_CURRENT},       {2, IDS_SCAN_EMCY_VOLTAGE},
    {3, IDS_SCAN_EMCY_TEMPERATURE},  {4, IDS_SCAN_EMCY_COMMUNICATION}, {5, IDS_SCAN_EMCY_DEVICE_PROFILE},
    {7, IDS_SCAN_EMCY_MANUFACTURER},
};

using NumberGetter = HRESULT (STDMETHODCALLTYPE NSdk::ICANopenNode::*)(std::uint32_t*);
using TextGetter = HRESULT (STDMETHODCALLTYPE NSdk::ICANopenNode::*)(wchar_t**);

std::uint32_t Number(NSdk::ICANopenNode& node, NumberGetter get) {
  std::uint32_t number = 0;
  (node.*get)(&number);
  return number;
}

std::wstring Text(NSdk::ICANopenNode& node, TextGetter get) {
  NCom::TaskText text;
  (node.*get)(text.Receive());
  return text.Text();
}

std::wstring ObjectText(NSdk::ICANopenNode& node, std::uint16_t index, std::uint8_t subindex) {
  NCom::TaskText text;
  node.GetObjectText(index, subindex, text.Receive());
  return text.Text();
}

std::wstring NodeIdText(std::uint32_t nodeId, std::uint32_t numberBase) {
  constexpr std::uint32_t kNoNodeId = 255;
  if (nodeId >= kNoNodeId) return {};
  return NResources::Print(numberBase == 10 ? L"%d" : L"0x%x", nodeId);
}

std::wstring StateText(std::uint32_t state) {
  for (const NCanopen::NodeStateLabel& label : NCanopen::NodeStates()) {
    if (static_cast<std::uint32_t>(label.state) == state) return NResources::LoadText(label.scannerStringId);
  }
  return {};
}

}  // namespace

std::span<const Column> Columns() { return kColumns; }

std::wstring CellText(NSdk::ICANopenNode* node, std::uint32_t column, std::uint32_t numberBase) {
  NCom::Require(node, "node");
  switch (column) {
    case NSdk::kColumnNodeId:
      return NodeIdText(Number(*node, &NSdk::ICANopenNode::GetNodeId), numberBase);
    case NSdk::kColumnState:
      return StateText(Number(*node, &NSdk::ICANopenNode::GetState));
    case NSdk::kColumnChannel:
      return std::to_wstring(static_cast<std::int32_t>(Number(*node, &NSdk::ICANopenNode::GetChannel)));
    case NSdk::kColumnName:
      return ObjectText(*node, kDeviceName, 0);
    case NSdk::kColumnMaster:
      return Text(*node, &NSdk::ICANopenNode::GetMaster);
    case NSdk::kColumnPriority:
      return Text(*node, &NSdk::ICANopenNode::GetPriority);
    default:
      return {};
  }
}

std::uint32_t RowImage(NSdk::ICANopenNode* node) {
  NCom::Require(node, "node");
  const std::uint32_t first = Number(*node, &NSdk::ICANopenNode::GetErrorRegister) != 0 ? kErrorImages : 0;
  if (Number(*node, &NSdk::ICANopenNode::IsAlive) == 0) return first;
  switch (Number(*node, &NSdk::ICANopenNode::GetState)) {
    case NSdk::kNodeBootUp:
    case NSdk::kNodeStopped:
      return first + 1;
    case NSdk::kNodePreOperational:
      return first + 2;
    case NSdk::kNodeOperational:
      return first + 3;
    default:
      return first;
  }
}

std::wstring ToolTip(NSdk::ICANopenNode* node) {
  NCom::Require(node, "node");
  std::wstring text =
      NResources::Print(NResources::LoadText(IDS_SCAN_NODE_TIP), ObjectText(*node, kDeviceName, 0),
                        ObjectText(*node, kDeviceType, 0), ObjectText(*node, kIdentity, kVendorId),
                        ObjectText(*node, kIdentity, kSerialNumber));
  const std::uint32_t errors = Number(*node, &NSdk::ICANopenNode::GetErrorRegister);
  for (const auto& error : kErrors) {
    if (errors & (1u << error.bit)) text += L'\n' + NResources::LoadText(error.textId);
  }
  return text;
}

}  // namespace NScanner
