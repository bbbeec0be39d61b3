#include "common/win/list_view.h"

#include <algorithm>

#include "common/win/dpi.h"

namespace NCommon {

void AddColumn(HWND list, const std::wstring& text, int width, int format) {
  LVCOLUMNW column = {};
  column.mask = LVCF_TEXT | LVCF_WIDTH | LVCF_FMT | LVCF_SUBITEM;
  column.pszText = const_cast<wchar_t*>(text.c_str());
  column.cx = Scaled(width, list);
  column.fmt = format;
  column.iSubItem = Header_GetItemCount(ListView_GetHeader(list));
  SendMessageW(list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(column.iSubItem),
               reinterpret_cast<LPARAM>(&column));
}

void AddRow(HWND list, const std::vector<std::wstring>& cells, LPARAM data) {
  LVITEMW item = {};
  item.mask = LVIF_PARAM;
  item.iItem = ListView_GetItemCount(list);
  item.lParam = data;
  item.iItem = static_cast<int>(SendMessageW(list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item)));
  for (const std::wstring& cell : cells) {
    item.mask = LVIF_TEXT;
    item.pszText = const_cast<wchar_t*>(cell.c_str());
    SendMessageW(list, LVM_SETITEMTEXTW, static_cast<WPARAM>(item.iItem), reinterpret_cast<LPARAM>(&item));
    ++item.iSubItem;
  }
}

void SelectRow(HWND list, int row) {
  ListView_SetItemState(list, row, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
  ListView_EnsureVisible(list, row, FALSE);
}

std::vector<LPARAM> SelectedData(HWND list) {
  std::vector<LPARAM> data;
  for (int row = ListView_GetNextItem(list, -1, LVNI_SELECTED); row >= 0;
       row = ListView_GetNextItem(list, row, LVNI_SELECTED)) {
    LVITEMW item = {};
    item.mask = LVIF_PARAM;
    item.iItem = row;
    SendMessageW(list, LVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    data.push_back(item.lParam);
  }
  return data;
}

void RedrawRows(HWND list) { RedrawWindow(list, nullptr, nullptr, RDW_INVALIDATE | RDW_NOCHILDREN); }

void AnswerText(LVITEMW& item, const std::wstring& text) {
  if (item.cchTextMax <= 0) return;
  const std::size_t size = std::min(text.size(), static_cast<std::size_t>(item.cchTextMax) - 1);
  std::copy_n(text.begin(), size, item.pszText);
  item.pszText[size] = L'\0';
}

// Without a row that could be meant: below the headings.
POINT KeyboardMenuPlace(HWND list) {
  const int row = ListView_GetNextItem(list, -1, LVNI_FOCUSED);
  const int top = ListView_GetTopIndex(list);
  RECT headings = {}, label = {};
  GetClientRect(ListView_GetHeader(list), &headings);
  POINT place = {0, headings.bottom};
  if (row >= top && row < top + ListView_GetCountPerPage(list) &&
      ListView_GetItemRect(list, row, &label, LVIR_LABEL)) {
    place = {label.left, label.bottom};
  }
  ClientToScreen(list, &place);
  return place;
}

}  // namespace NCommon
