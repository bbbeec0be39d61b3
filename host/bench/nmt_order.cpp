#include "host/bench/nmt_order.h"

#include <algorithm>

#include "host/bench/options.h"
#include "host/runtime/text.h"

namespace NBench {
namespace {

constexpr std::uint32_t kLastNode = 127;

std::vector<std::uint8_t> ParseTargets(const std::vector<std::string>& targets) {
  std::vector<std::uint8_t> nodeIds;
  if (targets == std::vector<std::string>{"all"}) return nodeIds;
  for (const std::string& text : targets) {
    const auto nodeId = ParseNumber(text, 1, kLastNode);
    if (!nodeId) Refuse("NODE", text, "all, or a node-ID from " + Range(1, kLastNode) + " is wanted");
    const auto narrow = static_cast<std::uint8_t>(*nodeId);
    if (std::find(nodeIds.begin(), nodeIds.end(), narrow) != nodeIds.end()) {
      Refuse("NODE", text, "this node-ID is given twice");
    }
    nodeIds.push_back(narrow);
  }
  return nodeIds;
}

}  // namespace

const std::vector<std::string>& NmtKinds() {
  static const std::vector<std::string> kinds = {"operational", "preoperational", "stop", "reset"};
  return kinds;
}

// The module's names are these words with a capital.
NmtOrder ParseNmtOrder(const std::string& kind, const std::vector<std::string>& targets,
                       std::uint32_t network) {
  const auto& kinds = NmtKinds();
  if (std::find(kinds.begin(), kinds.end(), kind) == kinds.end()) {
    Refuse("COMMAND", kind, "operational, preoperational, stop or reset is wanted");
  }
  std::wstring name = NRuntime::ToWide(kind);
  name[0] = static_cast<wchar_t>(name[0] - L'a' + L'A');
  NmtOrder order;
  order.nodeIds = ParseTargets(targets);
  order.command =
      L"CANopen." + name + (order.nodeIds.empty() ? L".All." : L".Nodes.") + std::to_wstring(network);
  return order;
}

bool Execute(Host& host, const NmtOrder& order) {
  const auto command = host.Application().Commands().FindCommand(order.command);
  host.PickNodes(order.nodeIds);
  return command && SUCCEEDED(command->Execute(nullptr));
}

}  // namespace NBench
