#pragma once
// The items that a transmission works through: those of a list that are enabled when it starts.

#include <cstddef>
#include <vector>

#include "canopen/item_kinds.h"

namespace NIg {

struct SnapshotEntry {
  NCanopen::ZMsgItemInfo* item =
      nullptr;  ///< owned by its list, which does not change while a transmission runs
  std::size_t listPosition = 0;
};

using Snapshot = std::vector<SnapshotEntry>;

Snapshot EnabledItems(const NCanopen::ItemList& list);

/// The snapshot holds an item that starts cyclic transmission.
bool StartsCyclicTransmission(const Snapshot& sequence);

/// The last item of the snapshot that switches cyclic transmission stops it.
bool EndsWithCyclicStop(const Snapshot& sequence);

/// Two enabled SDO items of the list use one SDO channel: the same request or the same response COB-ID.
bool SharesSdoChannel(const NCanopen::ItemList& list);

}  // namespace NIg
