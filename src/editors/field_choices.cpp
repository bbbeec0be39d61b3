#include "editors/field_choices.h"

#include <algorithm>

#include "canopen/vocabulary.h"
#include "common/text.h"
#include "editors/integer_text.h"
#include "resources/print.h"

namespace NEditors {
namespace {

using NSdo::DatabaseNode;
using NSdo::NodeObject;
using List = std::vector<FieldChoice>;

constexpr std::uint32_t kFirstSdoServer = 0x1201;  // behind the default one (CiA 301, 7.5.2.33)
constexpr std::uint32_t kLastSdoServer = 0x127F;
constexpr std::uint32_t kFirstTpdoMapping = 0x1A00;
constexpr std::uint8_t kRequestCobId = 1, kResponseCobId = 2;

std::string NumberText(std::uint32_t number, bool hexadecimal) {
  return NResources::Print(hexadecimal ? "%X" : "%u", number);
}

FieldChoice Labelled(std::uint32_t code, const char* label, bool hexadecimal) {
  return {NResources::Print("%s (%s)", NumberText(code, hexadecimal), label)};
}

const NodeObject* FindObject(const DatabaseNode& node, std::uint32_t index, std::uint32_t subIndex) {
  const auto found = std::ranges::find_if(node.objects, [&](const NodeObject& object) {
    return object.index == index && object.subindex == subIndex;
  });
  return found != node.objects.end() ? &*found : nullptr;
}

std::optional<std::uint32_t> ValueOf(const NodeObject& object) {
  const auto value = ReadUnsigned(NCommon::ToItemText(object.value), NumberBase::Automatic, UINT32_MAX);
  return value ? std::optional(static_cast<std::uint32_t>(*value)) : std::nullopt;
}

List NodeChoices(const ChoiceContext& context, bool all) {
  List list;
  if (all) list.push_back({NCanopen::kAllNodesLabel});
  for (const DatabaseNode& node : context.nodes) {
    list.push_back({NCanopen::NodeLabel(node.nodeId, NCommon::ToItemText(node.name))});
  }
  return list;
}

List PdoChoices(const ChoiceContext& context) {
  List list;
  for (auto& choice : NCanopen::PdoChoices(context.nodeId)) list.push_back({std::move(choice.label)});
  if (const DatabaseNode* node = FindNode(context.nodes, context.nodeId)) {
    for (const NSdo::Tpdo& tpdo : node->tpdos) {
      // A PDO that is not valid in the device (bit 31) can be sent all the same.
      list.push_back({NCanopen::DatabasePdoLabel(tpdo.cobId, node->nodeId, tpdo.number + 1)});
    }
  }
  return list;
}

List PerNode(const ChoiceContext& context, std::string (*label)(std::uint32_t nodeId)) {
  List list;
  for (const DatabaseNode& node : context.nodes) {
    if (NCanopen::IsNodeId(node.nodeId)) list.push_back({label(node.nodeId)});
  }
  return list;
}

/// The default server, then those that the description declares.
List SdoServers(const ChoiceContext& context, std::uint8_t subIndex) {
  List list;
  if (NCanopen::IsNodeId(context.nodeId)) {
    list.push_back({subIndex == kRequestCobId
                        ? NCanopen::DefaultSdoLabel(context.nodeId)
                        : NResources::Print("%s (Default)", NCanopen::CobIdText(NCanopen::SdoResponseCobId(
                                                                context.nodeId)))});
  }
  const DatabaseNode* node = FindNode(context.nodes, context.nodeId);
  if (node == nullptr) return list;
  for (const NodeObject& object : node->objects) {
    if (object.index < kFirstSdoServer || object.index > kLastSdoServer || object.subindex != subIndex)
      continue;
    const auto cobId = ValueOf(object);
    if (!cobId || (*cobId & NCanopen::kCobIdInvalid) != 0) continue;
    list.push_back({NCanopen::SdoServerLabel(*cobId, object.index - kFirstSdoServer + 2)});
  }
  return list;
}

List ObjectChoices(const ChoiceContext& context) {
  List list;
  if (const DatabaseNode* node = FindNode(context.nodes, context.nodeId)) {
    for (const NodeObject& object : node->objects) {
      list.push_back(
          {NResources::Print("%X sub %s %s", object.index, NumberText(object.subindex, context.hexadecimal),
                             NCommon::ToItemText(object.label)),
           &object});
    }
  }
  return list;
}

}  // namespace

const DatabaseNode* FindNode(std::span<const DatabaseNode> nodes, std::uint32_t nodeId) {
  const auto found =
      std::ranges::find_if(nodes, [nodeId](const DatabaseNode& node) { return node.nodeId == nodeId; });
  return found != nodes.end() ? &*found : nullptr;
}

std::optional<std::uint32_t> ObjectSize(const DatabaseNode& node, std::uint32_t index,
                                        std::uint32_t subIndex) {
  const NodeObject* object = FindObject(node, index, subIndex);
  const bool fixed = object != nullptr && !object->variableLength && object->size != 0;
  return fixed ? std::optional(object->size) : std::nullopt;
}

std::optional<std::uint32_t> MappedPdoSize(const DatabaseNode& node, std::uint32_t cobId) {
  const auto tpdo = std::ranges::find_if(node.tpdos, [cobId](const NSdo::Tpdo& candidate) {
    return NCanopen::FrameCobId(candidate.cobId) == cobId;
  });
  if (tpdo == node.tpdos.end()) return std::nullopt;
  const std::uint32_t mapping = kFirstTpdoMapping + tpdo->number;
  const NodeObject* entries = FindObject(node, mapping, 0);
  const auto count = entries != nullptr ? ValueOf(*entries) : std::nullopt;
  if (!count) return std::nullopt;
  std::uint32_t bits = 0;
  for (std::uint32_t entry = 1; entry <= std::min<std::uint32_t>(*count, 64); ++entry) {
    const NodeObject* object = FindObject(node, mapping, entry);
    const auto mapped = object != nullptr ? ValueOf(*object) : std::nullopt;
    if (!mapped) return std::nullopt;
    bits += *mapped & 0xFF;
  }
  return (bits + 7) / 8;
}

bool DependsOnNode(Choices choices) {
  return choices == Choices::Pdos || choices == Choices::SdoRequests || choices == Choices::SdoResponses ||
         choices == Choices::Objects;
}

std::vector<FieldChoice> ListChoices(Choices choices, const ChoiceContext& context) {
  List list;
  switch (choices) {
    case Choices::None:
      break;
    case Choices::Nodes:
      return NodeChoices(context, false);
    case Choices::NodesOrAll:
      return NodeChoices(context, true);
    case Choices::Pdos:
      return PdoChoices(context);
    case Choices::Emergencies:
      return PerNode(context, NCanopen::EmcyLabel);
    case Choices::ErrorControl:
      return PerNode(context, NCanopen::ErrorControlLabel);
    case Choices::SdoRequests:
      return SdoServers(context, kRequestCobId);
    case Choices::SdoResponses:
      return SdoServers(context, kResponseCobId);
    case Choices::Objects:
      return ObjectChoices(context);
    case Choices::NmtCommands:
      for (const auto& [code, label] : NCanopen::NmtCommands()) {
        list.push_back(Labelled(code, label, context.hexadecimal));
      }
      break;
    case Choices::NodeStates:
      for (const NCanopen::NodeStateLabel& state : NCanopen::NodeStates()) {
        list.push_back(
            Labelled(static_cast<std::uint32_t>(state.state), state.editorLabel, context.hexadecimal));
      }
      break;
    case Choices::ErrorCodes:
      for (const auto& [code, label] : NCanopen::EmcyClasses()) {
        list.push_back(Labelled(code, label, context.hexadecimal));
      }
      break;
  }
  return list;
}

}  // namespace NEditors
