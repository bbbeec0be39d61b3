#include "ig/list_commands.h"

#include "ig/list_editing.h"
#include "resources/resource_ids.h"

namespace NIg {
namespace {

bool CanChange(const CommandContext& context) { return !context.locked && context.selected > 0; }

// At the edge there is nowhere to go, unless rows are selected behind a gap.
bool HasRoomAbove(const CommandContext& context) {
  return context.firstSelected > 0 || context.lastSelected + 1 > context.selected;
}
bool HasRoomBelow(const CommandContext& context) {
  return context.lastSelected + 1 < context.count ||
         context.lastSelected + 1 > context.firstSelected + context.selected;
}

}  // namespace

bool IsAvailable(int command, const CommandContext& context) {
  switch (command) {
    case ID_IG_INSERT_SEQUENCE:
    case ID_IG_INSERT_CYCLIC: {
      const auto list = command == ID_IG_INSERT_CYCLIC ? NSdk::kCyclicList : NSdk::kSequenceList;
      return !context.locked && context.chosen && ListEditing::Accepts(list, *context.chosen);
    }
    case ID_IG_ITEM_COPY:
      return context.selected > 0;
    case ID_IG_ITEM_PASTE:
      return !context.locked && context.clipboard;
    case ID_IG_ITEM_UP:
      return CanChange(context) && HasRoomAbove(context);
    case ID_IG_ITEM_DOWN:
      return CanChange(context) && HasRoomBelow(context);
    // What is taken back may be in either list.
    case ID_IG_UNDO:
      return !context.locked && !context.otherLocked && context.canUndo;
    case ID_IG_REDO:
      return !context.locked && !context.otherLocked && context.canRedo;
    default:
      return CanChange(context);
  }
}

}  // namespace NIg
