#include "host/bench/node_document.h"

namespace NBench {
namespace {

using Json = nlohmann::ordered_json;

template <class Value>
Json OrNull(const std::optional<Value>& value) {
  return value ? Json(*value) : Json(nullptr);
}

Json NodeDocument(const ScannedNode& node) {
  const bool knownState = node.state != NSdk::kNodeStateUnknown;
  return {{"id", node.id},
          {"channel", node.channel},
          {"state", knownState ? Json(node.state) : Json(nullptr)},
          {"stateText", node.cells[NSdk::kColumnState]},
          {"alive", node.alive},
          {"errorRegister", node.errorRegister},
          {"master", node.cells[NSdk::kColumnMaster]},
          {"priority", node.cells[NSdk::kColumnPriority]},
          {"name", OrNull(node.name)},
          {"profile", OrNull(node.profile)},
          {"vendorId", OrNull(node.vendorId)},
          {"serial", OrNull(node.serial)},
          {"image", node.image}};
}

}  // namespace

Json NodesDocument(const std::vector<ScannedNode>& nodes) {
  Json document = Json::array();
  for (const ScannedNode& node : nodes) document.push_back(NodeDocument(node));
  return document;
}

std::string DocumentText(const Json& document) {
  return document.dump(-1, ' ', true, Json::error_handler_t::replace) + '\n';
}

}  // namespace NBench
