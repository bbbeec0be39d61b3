#pragma once
// The editors as tables: which fields the dialog of each item kind has, in the order in which they are
// checked, and what each of them offers. Bounds and number bases are those of the item's own fields
// (canopen/item_kinds.h).

#include <cstdint>
#include <span>

namespace NEditors {

enum class FieldControl {
  Number,    ///< an edit field
  List,      ///< an edit field with a list of choices
  CheckBox,  ///< 0 or 1
  Radio,     ///< two buttons: the first stands for 1, the second for 0
  Data,      ///< typed data text, with the data composer behind "..."
};

/// What a field with a list offers.
enum class Choices {
  None,
  Nodes,         ///< nodes of the databases
  NodesOrAll,    ///< the same behind "0 (All nodes)"
  Pdos,          ///< transmit PDOs of the node: the default ones, and those of its description
  Emergencies,   ///< EMCY identifiers of the nodes
  ErrorControl,  ///< heartbeat and guarding identifiers of the nodes
  SdoRequests,   ///< client-to-server identifiers of the node's SDO servers
  SdoResponses,  ///< server-to-client identifiers of the node's SDO servers
  NmtCommands,
  NodeStates,
  ErrorCodes,
  Objects,  ///< objects of the node's description
};

struct EditorField {
  const char* key;  ///< of the item's field
  FieldControl control = FieldControl::Number;
  Choices choices = Choices::None;
};

/// Fields of a kind's editor. Empty: there is no such kind.
std::span<const EditorField> EditorFields(std::uint32_t itemCode);

}  // namespace NEditors
