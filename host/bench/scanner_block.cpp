#include "host/bench/scanner_block.h"

#include <stdexcept>

#include "host/runtime/text.h"
#include "sdk/class_ids.h"

namespace NBench {
namespace {

constexpr std::uint32_t kDecimal = 10;
constexpr char kNotHeard[] = "--";

[[noreturn]] void RefuseBlock(const std::string& what) {
  throw std::runtime_error(std::string("block \"") + NSdk::kProgIdCANopenScanner + "\" " + what);
}

std::string Utf8(const NRuntime::ReceivedText& text) { return NRuntime::ToUtf8(text.Text()); }

std::optional<std::uint32_t> ObjectValue(NSdk::ICANopenNode& node, std::uint16_t index,
                                         std::uint8_t subindex) {
  std::uint32_t value = 0;
  if (node.GetObjectValue(index, subindex, &value) != S_OK) return std::nullopt;
  return value;
}

std::optional<std::string> DeviceName(NSdk::ICANopenNode& node) {
  NRuntime::ReceivedText text;
  if (FAILED(node.GetObjectText(0x1008, 0, text.Out()))) return std::nullopt;
  std::string name = Utf8(text);
  if (name == kNotHeard) return std::nullopt;
  return name;
}

// A node's own name goes before that of the database.
void TakeName(const NodeNames& names, ScannedNode& row) {
  const auto found = names.find({row.channel, row.id});
  if (row.name || found == names.end()) return;
  row.name = found->second;
  row.cells[NSdk::kColumnName] = found->second;
}

ScannedNode Read(NSdk::IScanner& scanner, NSdk::ICANopenNode& node) {
  ScannedNode row;
  std::uint32_t alive = 0;
  node.GetNodeId(&row.id);
  node.GetChannel(&row.channel);
  node.GetState(&row.state);
  node.IsAlive(&alive);
  node.GetErrorRegister(&row.errorRegister);
  scanner.GetRowImage(&node, &row.image);
  row.alive = alive != 0;
  row.name = DeviceName(node);
  row.profile = ObjectValue(node, 0x1000, 0);
  row.vendorId = ObjectValue(node, 0x1018, 1);
  row.serial = ObjectValue(node, 0x1018, 4);
  for (std::uint32_t column = 0; column < NSdk::kScannerColumns; ++column) {
    NRuntime::ReceivedText text;
    if (SUCCEEDED(scanner.GetCellText(&node, column, kDecimal, text.Out()))) row.cells[column] = Utf8(text);
  }
  return row;
}

}  // namespace

ScannerBlock::ScannerBlock(const NRuntime::Application& application, NRuntime::Setup& setup, NodeNames names)
    : mInserted(application, setup, L"Insert.CANopenScanner"),
      mScanner(NRuntime::Query<NSdk::IScanner>(Object())),
      mNames(std::move(names)) {
  if (!mScanner) RefuseBlock("is not a scanner");
  if (FAILED(mScanner->GetModel(mModel.Out())) || !mModel) RefuseBlock("has no table of nodes");
}

std::uint32_t ScannerBlock::ChangeCount() const {
  std::uint32_t count = 0;
  mModel->GetChangeCount(&count);
  return count;
}

std::vector<ScannedNode> ScannerBlock::Nodes() const {
  std::vector<ScannedNode> nodes;
  NRuntime::ComPtr<NSdk::IArray> found;
  std::uint32_t count = 0;
  if (FAILED(mScanner->GetNodes(found.Out())) || !found || FAILED(found->GetCount(&count))) return nodes;
  for (std::uint32_t position = 0; position < count; ++position) {
    void* node = nullptr;
    if (FAILED(found->GetElement(position, NSdk::IidOf<NSdk::ICANopenNode>(), &node)) || !node) continue;
    nodes.push_back(
        Read(*mScanner, *NRuntime::ComPtr<NSdk::ICANopenNode>::Own(static_cast<NSdk::ICANopenNode*>(node))));
    TakeName(mNames, nodes.back());
  }
  return nodes;
}

NodeTable ScannerBlock::Table() const {
  NodeTable table;
  for (std::uint32_t column = 0; column < NSdk::kScannerColumns; ++column) {
    NRuntime::ReceivedText text;
    if (SUCCEEDED(mScanner->GetColumnText(column, text.Out()))) table.headings[column] = Utf8(text);
  }
  table.nodes = Nodes();
  return table;
}

}  // namespace NBench
