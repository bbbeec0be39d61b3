#include "ig/win/template_tree.h"

namespace NIg {

void TemplateTree::Fill(HWND control, std::vector<MessageTemplate> templates) {
  mControl = control;
  SendMessageW(control, WM_SETREDRAW, FALSE, 0);
  TreeView_DeleteAllItems(control);
  mTemplates = std::move(templates);
  for (const MessageTemplate& root : mTemplates) {
    const HTREEITEM entry = Add(TVI_ROOT, root);
    for (HTREEITEM group = TreeView_GetChild(control, entry); group;
         group = TreeView_GetNextSibling(control, group)) {
      TreeView_Expand(control, group, TVE_EXPAND);
    }
    TreeView_Expand(control, entry, TVE_EXPAND);
  }
  SendMessageW(control, WM_SETREDRAW, TRUE, 0);
  const HTREEITEM first = TreeView_GetRoot(control);
  TreeView_SelectItem(control, first);
  TreeView_EnsureVisible(control, first);
  InvalidateRect(control, nullptr, TRUE);
}

HTREEITEM TemplateTree::Add(HTREEITEM parent, const MessageTemplate& entry) {
  TVINSERTSTRUCTW insertion = {};
  insertion.hParent = parent;
  insertion.hInsertAfter = TVI_LAST;
  insertion.item.mask = TVIF_TEXT | TVIF_PARAM;
  insertion.item.pszText = const_cast<wchar_t*>(entry.label.c_str());
  insertion.item.lParam = reinterpret_cast<LPARAM>(&entry);
  const auto added = reinterpret_cast<HTREEITEM>(
      SendMessageW(mControl, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insertion)));
  for (const MessageTemplate& child : entry.children) Add(added, child);
  return added;
}

const NCanopen::ZMsgItemInfo* TemplateTree::Selected() const {
  return ItemOf(TreeView_GetSelection(mControl));
}

const NCanopen::ZMsgItemInfo* TemplateTree::ItemOf(HTREEITEM entry) const {
  TVITEMW item = {};
  item.mask = TVIF_PARAM;
  item.hItem = entry;
  if (!entry || !SendMessageW(mControl, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item))) return nullptr;
  const auto* const found = reinterpret_cast<const MessageTemplate*>(item.lParam);
  return found ? found->item.get() : nullptr;
}

void TemplateTree::SelectAt(POINT screen) const {
  TVHITTESTINFO hit = {};
  hit.pt = screen;
  ScreenToClient(mControl, &hit.pt);
  if (TreeView_HitTest(mControl, &hit)) TreeView_SelectItem(mControl, hit.hItem);
}

POINT TemplateTree::MenuPlace() const {
  RECT label = {};
  const HTREEITEM entry = TreeView_GetSelection(mControl);
  if (entry) TreeView_GetItemRect(mControl, entry, &label, TRUE);
  POINT place = {label.left, label.bottom};
  ClientToScreen(mControl, &place);
  return place;
}

}  // namespace NIg
