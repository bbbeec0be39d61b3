#include "host/workbench/win/messages_window.h"

#include <commctrl.h>

#include <algorithm>

#include "host/workbench/texts.h"

namespace NWorkbench {
namespace {

constexpr int kMostMessages = 1000;
constexpr int kTimeColumn = 0, kTextColumn = 1;

void SetTitle(HWND list, int column, const wchar_t* text) {
  LVCOLUMNW data = {};
  data.mask = LVCF_TEXT;
  data.pszText = const_cast<wchar_t*>(text);
  if (!ListView_SetColumn(list, column, &data)) ListView_InsertColumn(list, column, &data);
}

std::wstring TimeOfDay() {
  SYSTEMTIME now = {};
  GetLocalTime(&now);
  wchar_t text[16];
  wsprintfW(text, L"%02u:%02u:%02u", now.wHour, now.wMinute, now.wSecond);
  return text;
}

}  // namespace

MessagesWindow::MessagesWindow(HWND client, RECT place) {
  MakeChild(client, L"OstrelMessages", Text(TextId::MessagesTitle), place);
  mList =
      MakeControl(Handle(), WC_LISTVIEWW, L"", WS_TABSTOP | LVS_REPORT | LVS_SINGLESEL | LVS_NOSORTHEADER, 1);
  ListView_SetExtendedListViewStyle(mList, LVS_EX_FULLROWSELECT | LVS_EX_LABELTIP);
  Refresh();
  ::SendMessageW(Handle(), WM_SIZE, 0, 0);
}

void MessagesWindow::Refresh() {
  SetWindowTextW(Handle(), Text(TextId::MessagesTitle));
  SetTitle(mList, kTimeColumn, Text(TextId::MessagesTime));
  SetTitle(mList, kTextColumn, Text(TextId::MessagesText));
  FitColumns();
}

// The texts get what is left, or more if they need it.
void MessagesWindow::FitColumns() const {
  RECT area = {};
  GetClientRect(mList, &area);
  const int time = Scaled(70);
  ListView_SetColumnWidth(mList, kTimeColumn, time);
  ListView_SetColumnWidth(mList, kTextColumn, std::max(static_cast<int>(area.right) - time, mWidestText));
}

void MessagesWindow::Add(const std::wstring& text) {
  if (ListView_GetItemCount(mList) >= kMostMessages) ListView_DeleteItem(mList, 0);
  const std::wstring time = TimeOfDay();
  LVITEMW item = {};
  item.mask = LVIF_TEXT;
  item.iItem = ListView_GetItemCount(mList);
  item.pszText = const_cast<wchar_t*>(time.c_str());
  const int row = ListView_InsertItem(mList, &item);
  ListView_SetItemText(mList, row, kTextColumn, const_cast<wchar_t*>(text.c_str()));
  mWidestText = std::max(mWidestText, ListView_GetStringWidth(mList, text.c_str()) + Scaled(16));
  FitColumns();
  ListView_EnsureVisible(mList, row, FALSE);
}

LRESULT MessagesWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_SIZE && mList) {
    RECT area = {};
    GetClientRect(Handle(), &area);
    MoveWindow(mList, 0, 0, area.right, area.bottom, TRUE);
    FitColumns();
  }
  if (message == WM_SETFOCUS) return SetFocus(mList), 0;
  if (message == WM_CLOSE) return PutAway(), 0;
  return Default(message, wParam, lParam);
}

}  // namespace NWorkbench
