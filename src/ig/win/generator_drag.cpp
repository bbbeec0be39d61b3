// Templates that are dragged onto the lists, and rows within and between these.

#include <algorithm>

#include "ig/win/generator_dialog.h"

namespace NIg {
namespace {

constexpr UINT_PTR kScrollTimer = 2;
constexpr UINT kScroll_ms = 80;

}  // namespace

void GeneratorDialog::BeginDrag(const NCanopen::ZMsgItemInfo* chosen,
                                std::optional<NSdk::GeneratorList> from) {
  if (from ? mBlock.IsLocked(*from) || List(*from).Selected().empty() : !chosen) return;
  mDragged = {true, chosen, from.value_or(NSdk::kSequenceList)};
  SetCapture(Window());
  SetTimer(Window(), kScrollTimer, kScroll_ms, nullptr);
}

// At least one of the items that are dragged may stand in the list.
bool GeneratorDialog::TakesDragged(NSdk::GeneratorList list) {
  if (mBlock.IsLocked(list)) return false;
  if (mDragged.chosen) return ListEditing::Accepts(list, *mDragged.chosen);
  if (mBlock.IsLocked(mDragged.from)) return false;
  const NCanopen::ItemList& items = mBlock.Items(mDragged.from);
  return std::ranges::any_of(List(mDragged.from).Selected(),
                             [&](std::size_t row) { return ListEditing::Accepts(list, *items[row]); });
}

MessageList* GeneratorDialog::DropTarget(POINT screen, std::size_t& position) {
  for (MessageList* list : {&mSequence, &mCyclic}) {
    const auto place = list->DropPosition(screen);
    if (!place) continue;
    position = *place;
    return TakesDragged(list->Which()) ? list : nullptr;
  }
  return nullptr;
}

void GeneratorDialog::DragTo(POINT screen) {
  if (GetKeyState(VK_ESCAPE) < 0) return EndDrag();
  std::size_t position = 0;
  MessageList* const target = DropTarget(screen, position);
  for (MessageList* list : {&mSequence, &mCyclic}) {
    list->ShowDropMark(list == target ? std::optional(position) : std::nullopt);
  }
  SetCursor(LoadCursorW(nullptr, target ? IDC_ARROW : IDC_NO));
}

void GeneratorDialog::ScrollWhileDragging() {
  POINT screen = {};
  GetCursorPos(&screen);
  mSequence.ScrollTowards(screen);
  mCyclic.ScrollTowards(screen);
}

void GeneratorDialog::Drop(POINT screen) {
  const Dragged dragged = mDragged;
  std::size_t position = 0;
  MessageList* const target = DropTarget(screen, position);
  EndDrag();
  if (!target) return;
  const NSdk::GeneratorList to = target->Which();
  ListEditing& editing = mBlock.Editing();
  if (dragged.chosen) {
    const NCanopen::ZMsgItemInfo* const items[] = {dragged.chosen};
    ShowEdited(to, editing.Insert(to, position, items));
  } else if (GetKeyState(VK_CONTROL) < 0) {
    std::vector<const NCanopen::ZMsgItemInfo*> items;
    for (const std::size_t row : List(dragged.from).Selected()) {
      items.push_back(mBlock.Items(dragged.from)[row].get());
    }
    ShowEdited(to, editing.Insert(to, position, items));
  } else {
    const Rows moved = editing.MoveTo(dragged.from, List(dragged.from).Selected(), to, position);
    if (to != dragged.from) ShowEdited(dragged.from, {});
    ShowEdited(to, moved);
  }
  mActive = to;
  SetFocus(target->Control());
}

void GeneratorDialog::EndDrag() {
  if (!mDragged.under) return;
  mDragged = {};
  KillTimer(Window(), kScrollTimer);
  mSequence.ShowDropMark(std::nullopt);
  mCyclic.ShowDropMark(std::nullopt);
  if (GetCapture() == Window()) ReleaseCapture();
}

}  // namespace NIg
