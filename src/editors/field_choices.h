#pragma once
// What the lists of the editors offer: vocabulary of CANopen, and the nodes of the databases with what their
// descriptions tell.

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "editors/editor_tables.h"
#include "sdo/node_list.h"

namespace NEditors {

struct FieldChoice {
  std::string text;  ///< item text; up to its first blank it is what the field takes
  /// The object that is meant, of Choices::Objects; borrowed from the node list.
  const NSdo::NodeObject* object = nullptr;
};

struct ChoiceContext {
  std::span<const NSdo::DatabaseNode> nodes;
  std::uint32_t nodeId = 0;  ///< the node that the item is for
  bool hexadecimal = false;
};

std::vector<FieldChoice> ListChoices(Choices choices, const ChoiceContext& context);

/// Whether a list offers something else for another node.
bool DependsOnNode(Choices choices);

/// Null: the databases have no such node.
const NSdo::DatabaseNode* FindNode(std::span<const NSdo::DatabaseNode> nodes, std::uint32_t nodeId);

/// Bytes that the node's description declares for an object of fixed length. Empty: there is no such object,
/// or its type does not tell.
std::optional<std::uint32_t> ObjectSize(const NSdo::DatabaseNode& node, std::uint32_t index,
                                        std::uint32_t subIndex);

/// Bytes that the node's description maps into the transmit PDO with this COB-ID, which has no flag but bit
/// 29 (CiA 301, 7.5.2.38: index, sub-index and length in bits of each mapped object). Empty: it describes no
/// mapping for it.
std::optional<std::uint32_t> MappedPdoSize(const NSdo::DatabaseNode& node, std::uint32_t cobId);

}  // namespace NEditors
