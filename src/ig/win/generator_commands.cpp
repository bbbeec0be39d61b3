// What the user does to the items: the commands behind menus, keys and clicks.

#include "com/module_scope.h"
#include "common/text.h"
#include "common/win/list_view.h"
#include "common/win/resources.h"
#include "ig/item_clipboard.h"
#include "ig/win/clipboard.h"
#include "ig/win/generator_dialog.h"
#include "resources/resource_ids.h"

namespace NIg {
namespace {

enum Modifier : unsigned { kPlain = 0, kCtrl = 1, kShift = 2 };

constexpr struct {
  WPARAM key;
  unsigned modifiers;
  int command;
  bool inTree;  // there too
} kKeys[] = {
    {VK_F6, kPlain, ID_IG_INSERT_SEQUENCE, true},
    {VK_F6, kShift, ID_IG_INSERT_CYCLIC, true},
    {VK_RETURN, kPlain, ID_IG_ITEM_EDIT, false},
    {VK_DELETE, kPlain, ID_IG_ITEM_DELETE, false},
    {'X', kCtrl, ID_IG_ITEM_CUT, false},
    {'C', kCtrl, ID_IG_ITEM_COPY, false},
    {'V', kCtrl, ID_IG_ITEM_PASTE, false},
    {VK_F3, kPlain, ID_IG_ITEM_UP, false},
    {VK_F4, kPlain, ID_IG_ITEM_DOWN, false},
    {VK_SPACE, kPlain, ID_IG_ITEM_ENABLED, false},
    {'Z', kCtrl, ID_IG_UNDO, true},
    {'Y', kCtrl, ID_IG_REDO, true},
    {VK_DELETE, kShift, ID_IG_ITEM_CUT, false},
    {VK_INSERT, kCtrl, ID_IG_ITEM_COPY, false},
    {VK_INSERT, kShift, ID_IG_ITEM_PASTE, false},
};

unsigned Modifiers() {
  return (GetKeyState(VK_CONTROL) < 0 ? kCtrl : kPlain) | (GetKeyState(VK_SHIFT) < 0 ? kShift : kPlain);
}

std::vector<const NCanopen::ZMsgItemInfo*> ItemsOf(const NCanopen::ItemList& list, const Rows& rows) {
  std::vector<const NCanopen::ZMsgItemInfo*> items;
  for (const std::size_t row : rows) items.push_back(list[row].get());
  return items;
}

// What another program pastes: a line per item.
std::wstring TextOf(const std::vector<const NCanopen::ZMsgItemInfo*>& items) {
  std::string text;
  for (const auto* item : items) {
    text.append(item->GetTypeName()).append("\t").append(item->GetAttributesText()).append("\r\n");
  }
  return NCommon::ToWide(text);
}

}  // namespace

// A command for a template is about the list that it goes into.
CommandContext GeneratorDialog::ContextFor(int command) {
  NSdk::GeneratorList which = mActive;
  if (command == ID_IG_INSERT_SEQUENCE) which = NSdk::kSequenceList;
  if (command == ID_IG_INSERT_CYCLIC) which = NSdk::kCyclicList;
  const Rows rows = List(which).Selected();
  CommandContext context;
  context.locked = mBlock.IsLocked(which);
  context.otherLocked = mBlock.IsLocked(which == NSdk::kCyclicList ? NSdk::kSequenceList : NSdk::kCyclicList);
  context.count = mBlock.Items(which).size();
  context.selected = rows.size();
  context.firstSelected = rows.empty() ? 0 : rows.front();
  context.lastSelected = rows.empty() ? 0 : rows.back();
  context.clipboard = HasClipboardItems();
  context.canUndo = mBlock.Editing().CanUndo();
  context.canRedo = mBlock.Editing().CanRedo();
  context.chosen = mTree.Selected();
  return context;
}

void GeneratorDialog::Execute(int command) {
  if (!Can(command)) return;
  MessageList& list = List(mActive);
  const Rows rows = list.Selected();
  ListEditing& editing = mBlock.Editing();
  switch (command) {
    case ID_IG_INSERT_SEQUENCE:
      return InsertTemplate(NSdk::kSequenceList);
    case ID_IG_INSERT_CYCLIC:
      return InsertTemplate(NSdk::kCyclicList);
    case ID_IG_ITEM_EDIT:
      return Edit();
    case ID_IG_ITEM_DELETE:
      return Delete(list, rows);
    case ID_IG_ITEM_CUT:
      if (Copy(list, rows)) Delete(list, rows);  // another program may hold the clipboard
      return;
    case ID_IG_ITEM_COPY:
      Copy(list, rows);
      return;
    case ID_IG_ITEM_PASTE:
      return Paste(list);
    case ID_IG_ITEM_UP:
      return ShowEdited(list.Which(), editing.MoveUp(list.Which(), rows));
    case ID_IG_ITEM_DOWN:
      return ShowEdited(list.Which(), editing.MoveDown(list.Which(), rows));
    case ID_IG_ITEM_ENABLED:
      return Toggle(list, rows);
    case ID_IG_UNDO:
      return TakeBack(editing.Undo());
    case ID_IG_REDO:
      return TakeBack(editing.Redo());
    default:
      return;
  }
}

bool GeneratorDialog::OnKey(WPARAM key, bool inTree) {
  if (key == VK_ESCAPE && IsDragging()) return EndDrag(), true;
  if (GetKeyState(VK_MENU) < 0) return false;
  for (const auto& known : kKeys) {
    if (known.key != key || known.modifiers != Modifiers() || (inTree && !known.inTree)) continue;
    Execute(known.command);
    return true;
  }
  return false;
}

bool GeneratorDialog::OnListKey(NSdk::GeneratorList list, WPARAM key) {
  mActive = list;
  if (key == 'A' && Modifiers() == kCtrl) {
    List(list).SelectAll();
    return true;
  }
  return OnKey(key, /*inTree=*/false);
}

// Rows have changed their places, so results of the last run do not belong to them any more.
void GeneratorDialog::ShowEdited(NSdk::GeneratorList list, const Rows& rows) {
  mBlock.Results().Clear(list);
  List(list).Refresh();
  List(list).Select(rows);
}

void GeneratorDialog::InsertTemplate(NSdk::GeneratorList list) {
  const NCanopen::ZMsgItemInfo* const chosen[] = {mTree.Selected()};
  ShowEdited(list, mBlock.Editing().Insert(list, List(list).InsertPosition(), chosen));
}

// The editor works on a copy. While it is open the row may go, or the block itself.
void GeneratorDialog::Edit() {
  MessageList& list = List(mActive);
  const auto which = list.Which();
  const Rows selected = list.Selected();
  const auto focused = list.Focused();
  if (selected.empty()) return;
  const bool focusedIsSelected =
      focused && std::find(selected.begin(), selected.end(), *focused) != selected.end();
  const std::size_t row = focusedIsSelected ? *focused : selected.front();
  const NCanopen::ZMsgItemInfo* const edited = mBlock.Items(which)[row].get();
  auto item = NCanopen::CopyItem(*edited);
  const NCom::ComPtr<ZCANopenIGNode> self(&mBlock);
  if (!mBlock.EditItem(*item, which, GetAncestor(Window(), GA_ROOT)) || mBlock.IsLocked(which)) return;
  const NCanopen::ItemList& items = mBlock.Items(which);
  if (row >= items.size() || items[row].get() != edited) return;
  mBlock.Editing().Replace(which, row, std::move(item));
  mBlock.Results().ClearRow({which, row});
  list.Refresh();
  if (Window()) SetFocus(list.Control());
}

void GeneratorDialog::Delete(MessageList& list, const Rows& rows) {
  ShowEdited(list.Which(), mBlock.Editing().Delete(list.Which(), rows));
}

bool GeneratorDialog::Copy(MessageList& list, const Rows& rows) {
  const auto items = ItemsOf(mBlock.Items(list.Which()), rows);
  return PutOnClipboard(Window(), WriteItems(items), TextOf(items));
}

void GeneratorDialog::Paste(MessageList& list) {
  const NCanopen::ItemList pasted = ReadItems(TakeFromClipboard(Window()), mBlock.HexDisplay());
  std::vector<const NCanopen::ZMsgItemInfo*> items;
  for (const auto& item : pasted) items.push_back(item.get());
  const Rows rows = mBlock.Editing().Insert(list.Which(), list.InsertPosition(), items);
  if (!rows.empty()) ShowEdited(list.Which(), rows);
}

// All follow the one that has the focus.
void GeneratorDialog::Toggle(MessageList& list, const Rows& rows) {
  const NCanopen::ItemList& items = mBlock.Items(list.Which());
  const bool enable = !items[list.Focused().value_or(rows.front())]->IsEnabled();
  mBlock.Editing().SetEnabled(list.Which(), rows, enable);
  list.Refresh();
}

void GeneratorDialog::OnCheckBox(NSdk::GeneratorList list, std::size_t row) {
  mActive = list;
  if (mBlock.IsLocked(list) || row >= mBlock.Items(list).size()) return;
  mBlock.Editing().SetEnabled(list, {row}, !mBlock.Items(list)[row]->IsEnabled());
  List(list).Refresh();
}

void GeneratorDialog::TakeBack(const std::optional<EditedRows>& edited) {
  if (!edited) return;
  for (const auto list : {NSdk::kSequenceList, NSdk::kCyclicList}) ShowEdited(list, {});
  mActive = edited->list;
  List(mActive).Select(edited->rows);
}

// ---- context menus

void GeneratorDialog::ShowMenu(HWND control, POINT place) {
  const bool byKeyboard = place.x == -1 && place.y == -1;
  MessageList* const list = ListOf(control);
  if (!list && control != mTree.Control()) return;
  if (list) {
    mActive = list->Which();
    if (byKeyboard) place = NCommon::KeyboardMenuPlace(control);
  } else if (byKeyboard) {
    place = mTree.MenuPlace();
  } else {
    mTree.SelectAt(place);
  }
  const HMENU menu = NCommon::LoadOwnMenu(list ? IDM_IG_ITEMS : IDM_IG_TEMPLATES);
  const HMENU shown = GetSubMenu(menu, 0);
  for (int position = 0; position < GetMenuItemCount(shown); ++position) {
    const int command = static_cast<int>(GetMenuItemID(shown, position));
    const UINT state = command > 0 && Can(command) ? MF_ENABLED : MF_GRAYED;
    EnableMenuItem(shown, static_cast<UINT>(position), MF_BYPOSITION | state);
  }
  const auto focused = List(mActive).Focused();
  if (list && focused && mBlock.Items(mActive)[*focused]->IsEnabled()) {
    CheckMenuItem(shown, ID_IG_ITEM_ENABLED, MF_BYCOMMAND | MF_CHECKED);
  }
  const NCom::ComPtr<ZCANopenIGNode> self(&mBlock);
  const int chosen =
      TrackPopupMenu(shown, TPM_RETURNCMD | TPM_RIGHTBUTTON, place.x, place.y, 0, Window(), nullptr);
  DestroyMenu(menu);
  if (chosen != 0 && Window()) Execute(chosen);
}

}  // namespace NIg
