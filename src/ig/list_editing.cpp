#include "ig/list_editing.h"

#include <algorithm>
#include <iterator>
#include <numeric>

namespace NIg {
namespace {

using NCanopen::ItemList;
using NSdk::GeneratorList;

constexpr std::size_t kMaxSteps = 1000;
constexpr std::size_t kManyRuns = 16;  // each costs a move of all rows behind it

/// Selected rows that follow each other.
struct Run {
  std::size_t first;
  std::size_t count;
};

std::vector<Run> RunsOf(const Rows& rows) {
  std::vector<Run> runs;
  for (const std::size_t row : rows) {
    if (!runs.empty() && runs.back().first + runs.back().count == row) {
      ++runs.back().count;
    } else {
      runs.push_back({row, 1});
    }
  }
  return runs;
}

Rows Consecutive(std::size_t first, std::size_t count) {
  Rows rows(count);
  std::iota(rows.begin(), rows.end(), first);
  return rows;
}

ItemList Copies(const ItemList& list, std::size_t first, std::size_t count) {
  ItemList copies;
  for (std::size_t row = first; row < first + count; ++row) copies.push_back(NCanopen::CopyItem(*list[row]));
  return copies;
}

}  // namespace

bool ListEditing::Accepts(GeneratorList list, const NCanopen::ZMsgItemInfo& item) {
  return list == NSdk::kSequenceList || NCanopen::KindOf(item).isMessage;
}

void ListEditing::Flip(Change& change) {
  ItemList& list = List(change.list);
  if (change.count == change.items.size()) {
    std::swap_ranges(change.items.begin(), change.items.end(),
                     list.begin() + static_cast<std::ptrdiff_t>(change.position));
    return;
  }
  const auto at = [&](std::size_t row) { return list.begin() + static_cast<std::ptrdiff_t>(row); };
  ItemList taken(std::make_move_iterator(at(change.position)),
                 std::make_move_iterator(at(change.position + change.count)));
  list.erase(at(change.position), at(change.position + change.count));
  list.insert(at(change.position), std::make_move_iterator(change.items.begin()),
              std::make_move_iterator(change.items.end()));
  change.count = change.items.size();
  change.items = std::move(taken);
}

void ListEditing::Do(std::vector<Change> changes) {
  if (changes.empty()) return;
  for (Change& change : changes) Flip(change);
  mUndone.clear();
  mDone.push_back({mVersion, std::move(changes)});
  if (mDone.size() > kMaxSteps) mDone.pop_front();
  mVersion = ++mNewest;
}

Rows ListEditing::Insert(GeneratorList list, std::size_t position,
                         std::span<const NCanopen::ZMsgItemInfo* const> items) {
  Change change{list, position, 0, {}};
  for (const NCanopen::ZMsgItemInfo* item : items) {
    if (Accepts(list, *item)) change.items.push_back(NCanopen::CopyItem(*item));
  }
  const std::size_t count = change.items.size();
  if (count == 0) return {};
  std::vector<Change> changes;
  changes.push_back(std::move(change));
  Do(std::move(changes));
  return Consecutive(position, count);
}

std::vector<ListEditing::Change> ListEditing::Deletion(GeneratorList list, const Rows& rows) {
  std::vector<Change> changes;
  const auto runs = RunsOf(rows);
  if (runs.size() <= kManyRuns) {
    // From the end, so that the positions before stay what they are.
    for (auto run = runs.rbegin(); run != runs.rend(); ++run) {
      changes.push_back({list, run->first, run->count, {}});
    }
    return changes;
  }
  // All at once: copies of the rows between the deleted ones take the place of everything.
  Change change{list, rows.front(), rows.back() + 1 - rows.front(), {}};
  for (std::size_t next = 0, row = rows.front(); row <= rows.back(); ++row) {
    if (row == rows[next]) {
      ++next;
    } else {
      change.items.push_back(NCanopen::CopyItem(*List(list)[row]));
    }
  }
  changes.push_back(std::move(change));
  return changes;
}

Rows ListEditing::Delete(GeneratorList list, const Rows& rows) {
  if (rows.empty()) return {};
  Do(Deletion(list, rows));
  const std::size_t size = List(list).size();
  return size == 0 ? Rows{} : Rows{std::min(rows.front(), size - 1)};
}

Rows ListEditing::Shift(GeneratorList list, const Rows& rows, bool up) {
  const ItemList& items = List(list);
  std::vector<Change> changes;
  Rows moved;
  for (const Run& run : RunsOf(rows)) {
    const bool atEdge = up ? run.first == 0 : run.first + run.count == items.size();
    const std::size_t first = atEdge ? run.first : up ? run.first - 1 : run.first + 1;
    for (std::size_t row = first; row < first + run.count; ++row) moved.push_back(row);
    if (atEdge) continue;
    const std::size_t start = std::min(first, run.first);
    Change change{list, start, run.count + 1, Copies(items, start, run.count + 1)};
    std::rotate(change.items.begin(), up ? change.items.begin() + 1 : change.items.end() - 1,
                change.items.end());
    changes.push_back(std::move(change));
  }
  Do(std::move(changes));
  return moved;
}

Rows ListEditing::MoveUp(GeneratorList list, const Rows& rows) { return Shift(list, rows, true); }

Rows ListEditing::MoveDown(GeneratorList list, const Rows& rows) { return Shift(list, rows, false); }

Rows ListEditing::MoveTo(GeneratorList from, const Rows& rows, GeneratorList to, std::size_t position) {
  const ItemList& source = List(from);
  Change insertion{to, position, 0, {}};
  Rows taken;
  for (const std::size_t row : rows) {
    if (!Accepts(to, *source[row])) continue;
    insertion.items.push_back(NCanopen::CopyItem(*source[row]));
    taken.push_back(row);
  }
  if (taken.empty()) return {};
  std::vector<Change> changes = Deletion(from, taken);
  if (from == to) {
    insertion.position -= static_cast<std::size_t>(
        std::ranges::count_if(taken, [position](std::size_t row) { return row < position; }));
  }
  const std::size_t first = insertion.position;
  changes.push_back(std::move(insertion));
  Do(std::move(changes));
  return Consecutive(first, taken.size());
}

void ListEditing::SetEnabled(GeneratorList list, const Rows& rows, bool enabled) {
  std::vector<Change> changes;
  for (const Run& run : RunsOf(rows)) {
    changes.push_back({list, run.first, run.count, Copies(List(list), run.first, run.count)});
    for (const auto& item : changes.back().items) item->SetEnabled(enabled ? 1 : 0);
  }
  Do(std::move(changes));
}

void ListEditing::Replace(GeneratorList list, std::size_t row, std::unique_ptr<NCanopen::ZMsgItemInfo> item) {
  std::vector<Change> changes;
  changes.push_back({list, row, 1, {}});
  changes.back().items.push_back(std::move(item));
  Do(std::move(changes));
}

std::optional<EditedRows> ListEditing::EditedBy(const Step& step) {
  EditedRows edited{step.changes.front().list, {}};
  for (const Change& change : step.changes) {
    if (change.count == 0) continue;
    if (change.list != edited.list) edited = {change.list, {}};
    for (std::size_t row = change.position; row < change.position + change.count; ++row) {
      edited.rows.push_back(row);
    }
  }
  std::ranges::sort(edited.rows);
  edited.rows.erase(std::unique(edited.rows.begin(), edited.rows.end()), edited.rows.end());
  return edited;
}

std::optional<EditedRows> ListEditing::Undo() {
  if (mDone.empty()) return std::nullopt;
  Step step = std::move(mDone.back());
  mDone.pop_back();
  for (auto change = step.changes.rbegin(); change != step.changes.rend(); ++change) Flip(*change);
  std::swap(mVersion, step.version);
  mUndone.push_back(std::move(step));
  return EditedBy(mUndone.back());
}

std::optional<EditedRows> ListEditing::Redo() {
  if (mUndone.empty()) return std::nullopt;
  Step step = std::move(mUndone.back());
  mUndone.pop_back();
  for (Change& change : step.changes) Flip(change);
  std::swap(mVersion, step.version);
  mDone.push_back(std::move(step));
  return EditedBy(mDone.back());
}

void ListEditing::Forget() {
  mDone.clear();
  mUndone.clear();
  mSaved = mVersion = ++mNewest;
}

}  // namespace NIg
