#pragma once
// The tree of templates from which a user takes items for the lists.

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "canopen/item.h"
#include "sdo/node_list.h"

namespace NIg {

struct MessageTemplate {
  std::wstring label;
  std::unique_ptr<NCanopen::ZMsgItemInfo> item;  ///< null: a root, which is no template itself
  std::vector<MessageTemplate> children;
};

/// Two roots: the kinds of messages, with an entry for each node of the databases and each of its transmit
/// PDOs, and the kinds of flow control. `hexDisplay` is the block's, and outlives the items.
std::vector<MessageTemplate> MakeTemplates(const bool* hexDisplay, std::span<const NSdo::DatabaseNode> nodes);

}  // namespace NIg
