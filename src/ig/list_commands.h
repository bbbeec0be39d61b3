#pragma once
// Which commands of the generator's window make sense just now. They are those of its menus
// (resources/resource_ids.h).

#include <cstddef>

#include "canopen/item.h"

namespace NIg {

/// What the commands depend on.
struct CommandContext {
  bool locked = false;       ///< the list is being sent
  bool otherLocked = false;  ///< the other list is
  std::size_t count = 0;     ///< rows of the list
  std::size_t selected = 0;
  std::size_t firstSelected = 0;  ///< of these
  std::size_t lastSelected = 0;
  bool clipboard = false;  ///< holds items
  bool canUndo = false;
  bool canRedo = false;
  /// Template that is selected; null: none.
  const NCanopen::ZMsgItemInfo* chosen = nullptr;
};

bool IsAvailable(int command, const CommandContext& context);

}  // namespace NIg
