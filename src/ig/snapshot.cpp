#include "ig/snapshot.h"

#include <set>

#include "canopen/flow_items.h"
#include "canopen/message_items.h"

namespace NIg {
namespace {

// Only enabled items reach a snapshot; while it is being sent the host alone can disable one, so it is asked
// again.
const NCanopen::ZCycSendStateItemInfo* EnabledSwitch(const SnapshotEntry& entry) {
  const auto* item = dynamic_cast<const NCanopen::ZCycSendStateItemInfo*>(entry.item);
  return item && item->IsEnabled() ? item : nullptr;
}

}  // namespace

Snapshot EnabledItems(const NCanopen::ItemList& list) {
  Snapshot snapshot;
  for (std::size_t position = 0; position < list.size(); ++position) {
    if (list[position]->IsEnabled()) snapshot.push_back({list[position].get(), position});
  }
  return snapshot;
}

bool StartsCyclicTransmission(const Snapshot& sequence) {
  for (const SnapshotEntry& entry : sequence) {
    const auto* item = EnabledSwitch(entry);
    if (item && item->record.start) return true;
  }
  return false;
}

bool EndsWithCyclicStop(const Snapshot& sequence) {
  for (auto entry = sequence.rbegin(); entry != sequence.rend(); ++entry) {
    if (entry->item->GetTypeCode() != NCanopen::kItemCyclicState) continue;
    const auto* item = EnabledSwitch(*entry);
    return item && !item->record.start;
  }
  return false;
}

bool SharesSdoChannel(const NCanopen::ItemList& list) {
  std::set<std::uint32_t> requests;
  std::set<std::uint32_t> responses;
  for (const auto& entry : list) {
    const auto* item = dynamic_cast<const NCanopen::ZSDOItemInfo*>(entry.get());
    if (!item || !item->IsEnabled()) continue;
    if (!requests.insert(item->record.cobIdTx).second || !responses.insert(item->record.cobIdRx).second)
      return true;
  }
  return false;
}

}  // namespace NIg
