#pragma once
// What a user does to the two lists of a generator: insert, delete, move, enable, and take it back.

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "canopen/item_kinds.h"
#include "sdk/generator.h"

namespace NIg {

/// Positions in a list, ascending, each once.
using Rows = std::vector<std::size_t>;

/// Where something has happened, to be selected.
struct EditedRows {
  NSdk::GeneratorList list = NSdk::kSequenceList;
  Rows rows;
};

/// Changes both lists and keeps how to undo it. Nobody else changes them meanwhile; whoever replaces their
/// contents (a file was loaded) calls Forget.
class ListEditing {
 public:
  /// The lists are borrowed.
  ListEditing(NCanopen::ItemList& sequence, NCanopen::ItemList& cyclic) : mLists{&sequence, &cyclic} {}

  /// Pauses and switches of cyclic transmission have no meaning in the cyclic list.
  static bool Accepts(NSdk::GeneratorList list, const NCanopen::ZMsgItemInfo& item);

  /// Inserts copies of the items that the list accepts in front of `position` (at most its size). Returns the
  /// rows of the copies.
  Rows Insert(NSdk::GeneratorList list, std::size_t position,
              std::span<const NCanopen::ZMsgItemInfo* const> items);
  /// Returns the row to select then; none when the list is empty.
  Rows Delete(NSdk::GeneratorList list, const Rows& rows);
  /// Each run of selected rows changes places with its neighbour above or below; one at the edge stays.
  /// Returns the rows where they are then.
  Rows MoveUp(NSdk::GeneratorList list, const Rows& rows);
  Rows MoveDown(NSdk::GeneratorList list, const Rows& rows);
  /// Moves rows in front of a position, in the same list or to the other one, which takes only what it
  /// accepts; what it does not stays.
  Rows MoveTo(NSdk::GeneratorList from, const Rows& rows, NSdk::GeneratorList to, std::size_t position);
  void SetEnabled(NSdk::GeneratorList list, const Rows& rows, bool enabled);
  /// The user has edited an item.
  void Replace(NSdk::GeneratorList list, std::size_t row, std::unique_ptr<NCanopen::ZMsgItemInfo> item);

  bool CanUndo() const { return !mDone.empty(); }
  bool CanRedo() const { return !mUndone.empty(); }
  /// Empty result: there is nothing to take back.
  std::optional<EditedRows> Undo();
  std::optional<EditedRows> Redo();

  /// Whether the lists differ from what MarkSaved was called for.
  bool IsModified() const { return Version() != mSaved; }
  void MarkSaved() { mSaved = Version(); }
  /// The lists have new contents, as saved.
  void Forget();
  /// What the lists hold now was never saved.
  void MarkUnsaved() { mSaved = kNever; }
  /// Differs for each state of the lists.
  std::uint64_t Version() const { return mVersion; }

 private:
  /// Items that change places with items of a list. Doing it twice is doing nothing.
  struct Change {
    NSdk::GeneratorList list;
    std::size_t position;
    std::size_t count;         ///< items of the list from there on
    NCanopen::ItemList items;  ///< what takes their place
  };
  struct Step {
    std::uint64_t version;  ///< of the lists, before it
    std::vector<Change> changes;
  };

  NCanopen::ItemList& List(NSdk::GeneratorList list) { return *mLists[list]; }
  void Flip(Change& change);
  std::vector<Change> Deletion(NSdk::GeneratorList list, const Rows& rows);
  void Do(std::vector<Change> changes);
  Rows Shift(NSdk::GeneratorList list, const Rows& rows, bool up);
  static std::optional<EditedRows> EditedBy(const Step& step);

  static constexpr std::uint64_t kNever = ~std::uint64_t{0};

  std::array<NCanopen::ItemList*, 2> mLists;
  std::deque<Step> mDone, mUndone;
  std::uint64_t mVersion = 0, mNewest = 0, mSaved = 0;
};

}  // namespace NIg
