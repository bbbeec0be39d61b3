#include "plugin/nmt_menu.h"

namespace NPlugin {

std::optional<NmtTarget> NmtMenu::Find(std::uint32_t id) const {
  if (id < mFirstId || id - mFirstId >= mItems.size()) return std::nullopt;
  return mItems[id - mFirstId];
}

}  // namespace NPlugin
