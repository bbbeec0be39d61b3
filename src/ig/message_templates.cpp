#include "ig/message_templates.h"

#include <algorithm>
#include <string_view>

#include "canopen/item_kinds.h"
#include "canopen/vocabulary.h"
#include "common/text.h"
#include "resources/print.h"
#include "resources/resource_ids.h"
#include "resources/text.h"

namespace NIg {
namespace {

struct Group {
  const char* kind;
  bool perNode;
};

constexpr Group kMessages[] = {{"SDO", true}, {"PDO", true},   {"HBEAT", true}, {"GUARD", false},
                               {"NMT", true}, {"SYNC", false}, {"EMCY", true},  {"RTR", false}};
constexpr Group kFlowControl[] = {{"PAUSE", false}, {"CYCLETX", false}};

MessageTemplate TpdoTemplate(const NCanopen::ItemKind& kind, const bool* hexDisplay,
                             const NSdo::DatabaseNode& node, const NSdo::Tpdo& tpdo) {
  // A PDO that is not valid in the device (bit 31) can be sent all the same.
  const std::uint32_t cobId = NCanopen::FrameCobId(tpdo.cobId);
  return {NResources::Print(L"N%d_TPDO%d (%s)", node.nodeId, tpdo.number + 1,
                            NCommon::ToWide(NCanopen::CobIdText(cobId))),
          kind.makeForNode(hexDisplay, node.nodeId, cobId),
          {}};
}

MessageTemplate NodeTemplate(const NCanopen::ItemKind& kind, const bool* hexDisplay,
                             const NSdo::DatabaseNode& node) {
  MessageTemplate entry{NResources::Print(L"Node %d, %s", node.nodeId, node.name),
                        kind.makeForNode(hexDisplay, node.nodeId, 0),
                        {}};
  if (kind.code == NCanopen::kItemPdo) {
    for (const NSdo::Tpdo& tpdo : node.tpdos) {
      entry.children.push_back(TpdoTemplate(kind, hexDisplay, node, tpdo));
    }
  }
  return entry;
}

MessageTemplate MakeRoot(std::uint32_t label, std::span<const Group> groups, const bool* hexDisplay,
                         std::span<const NSdo::DatabaseNode> nodes) {
  MessageTemplate root{NResources::LoadText(label), nullptr, {}};
  for (const Group& group : groups) {
    const NCanopen::ItemKind& kind = *NCanopen::FindItemKind(std::string_view(group.kind));
    MessageTemplate entry{NCommon::ToWide(group.kind), kind.make(hexDisplay), {}};
    for (const NSdo::DatabaseNode& node : nodes) {
      // An attribute of a database may say any number.
      if (group.perNode && NCanopen::IsNodeId(node.nodeId)) {
        entry.children.push_back(NodeTemplate(kind, hexDisplay, node));
      }
    }
    root.children.push_back(std::move(entry));
  }
  return root;
}

}  // namespace

std::vector<MessageTemplate> MakeTemplates(const bool* hexDisplay,
                                           std::span<const NSdo::DatabaseNode> nodes) {
  std::vector<MessageTemplate> roots;
  roots.push_back(MakeRoot(IDS_IG_TREE_MESSAGES, kMessages, hexDisplay, nodes));
  roots.push_back(MakeRoot(IDS_IG_TREE_FLOW_CONTROL, kFlowControl, hexDisplay, nodes));
  return roots;
}

}  // namespace NIg
