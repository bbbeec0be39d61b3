#include "host/workbench/win/trace_window.h"

#include <windowsx.h>

#include <algorithm>
#include <chrono>
#include <utility>

#include "host/workbench/service.h"
#include "host/workbench/texts.h"
#include "host/workbench/trace_texts.h"

namespace NWorkbench {
namespace {

enum ControlId : int { kPause = 1, kClear, kFilterLabel, kFilter, kList };

constexpr UINT_PTR kRefreshTimer = 1, kSubclass = 1;
constexpr UINT kRefreshPeriod_ms = 50;
// Drawing takes no more than this part of the time, however slow the screen is.
constexpr int kShareOfDrawing = 10;
constexpr UINT kLongestPeriod_ms = 1000;
// When nobody can read what goes by. A scroll bar takes as long to draw as all rows, and hardly changes.
constexpr UINT kFloodPeriod_ms = 100;
constexpr std::chrono::seconds kFloodPeriodOfBar{1};
constexpr std::size_t kRowsAtOnce = 20000;  // that a filter looks at between two refreshes
constexpr std::size_t kMostCopied = 100000;

struct Column {
  TextId title;
  int width;  // at 96 dpi
  int alignment;
};

constexpr Column kColumns[kTraceColumns] = {
    {TextId::TraceTime, 96, LVCFMT_RIGHT},     {TextId::TraceChannel, 40, LVCFMT_RIGHT},
    {TextId::TraceDirection, 36, LVCFMT_LEFT}, {TextId::TraceIdentifier, 76, LVCFMT_RIGHT},
    {TextId::TraceService, 76, LVCFMT_LEFT},   {TextId::TraceNode, 52, LVCFMT_RIGHT},
    {TextId::TraceSize, 40, LVCFMT_RIGHT},     {TextId::TraceData, 230, LVCFMT_LEFT},
};

// Behind the text, by Service.
constexpr COLORREF kColours[kServices] = {
    RGB(255, 224, 178),  // NMT
    RGB(236, 239, 241),  // SYNC
    RGB(255, 205, 210),  // EMCY
    RGB(236, 239, 241),  // TIME
    RGB(200, 230, 201),  // PDO
    RGB(187, 222, 251),  // SDO
    RGB(255, 249, 196),  // heartbeat
    RGB(225, 190, 231),  // LSS
    CLR_DEFAULT,
};

bool PutOnClipboard(HWND owner, const std::wstring& text) {
  const std::size_t size = (text.size() + 1) * sizeof(wchar_t);
  const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, size);
  if (!memory) return false;
  std::copy_n(text.c_str(), text.size() + 1, static_cast<wchar_t*>(GlobalLock(memory)));
  GlobalUnlock(memory);
  if (OpenClipboard(owner)) {
    EmptyClipboard();
    const bool taken = SetClipboardData(CF_UNICODETEXT, memory) != nullptr;
    CloseClipboard();
    if (taken) return true;
  }
  GlobalFree(memory);
  return false;
}

}  // namespace

TraceWindow::TraceWindow(HWND client, TraceStore& store, RECT place) : mStore(store), mView(store) {
  MakeChild(client, L"OstrelTrace", Text(TextId::TraceTitle), place);
  MakeControls();
  Refresh();
  Arrange();
  SetTimer(Handle(), kRefreshTimer, kRefreshPeriod_ms, nullptr);
}

void TraceWindow::MakeControls() {
  mPause = MakeControl(Handle(), WC_BUTTONW, L"", WS_TABSTOP | BS_AUTOCHECKBOX, kPause);
  mClear = MakeControl(Handle(), WC_BUTTONW, L"", WS_TABSTOP | BS_PUSHBUTTON, kClear);
  mFilterLabel = MakeControl(Handle(), WC_STATICW, L"", SS_CENTERIMAGE, kFilterLabel);
  mFilter = MakeControl(Handle(), WC_EDITW, L"", WS_TABSTOP | WS_BORDER | ES_AUTOHSCROLL, kFilter);
  mList = MakeControl(Handle(), WC_LISTVIEWW, L"",
                      WS_TABSTOP | LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS | LVS_NOSORTHEADER, kList);
  SetWindowSubclass(mList, MeasurePainting, kSubclass, reinterpret_cast<DWORD_PTR>(this));
  ListView_SetExtendedListViewStyle(mList, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
  for (int position = 0; position < kTraceColumns; ++position) {
    LVCOLUMNW column = {};
    column.mask = LVCF_FMT | LVCF_WIDTH;
    column.fmt = kColumns[position].alignment;
    column.cx = Scaled(kColumns[position].width);
    ListView_InsertColumn(mList, position, &column);
  }
}

void TraceWindow::Refresh() {
  SetWindowTextW(Handle(), Text(TextId::TraceTitle));
  SetWindowTextW(mPause, Text(TextId::TracePause));
  SetWindowTextW(mClear, Text(TextId::TraceClear));
  SetWindowTextW(mFilterLabel, Text(TextId::TraceFilter));
  ::SendMessageW(mFilter, EM_SETCUEBANNER, TRUE, reinterpret_cast<LPARAM>(Text(TextId::TraceFilterHint)));
  InvalidateRect(mFilter, nullptr, TRUE);
  for (int position = 0; position < kTraceColumns; ++position) {
    LVCOLUMNW column = {};
    column.mask = LVCF_TEXT | LVCF_FMT;
    column.pszText = const_cast<wchar_t*>(Text(kColumns[position].title));
    column.fmt = kColumns[position].alignment;
    ListView_SetColumn(mList, position, &column);
  }
  InvalidateRect(mList, nullptr, FALSE);
}

void TraceWindow::SetNumberBase(std::uint32_t base) {
  mView.SetNumberBase(base);
  InvalidateRect(mList, nullptr, FALSE);
}

void TraceWindow::Restart() {
  mView.Pause(false);
  Button_SetCheck(mPause, BST_UNCHECKED);
  mView.Reset();
  ShowNew();
}

void TraceWindow::Arrange() {
  RECT area = {};
  GetClientRect(Handle(), &area);
  const int gap = Scaled(6), height = Scaled(23), bar = height + 2 * gap;
  int left = gap;
  const auto place = [&](HWND control, int width) {
    MoveWindow(control, left, gap, width, height, TRUE);
    left += width + gap;
  };
  place(mPause, Scaled(70));
  place(mClear, Scaled(70));
  place(mFilterLabel, Scaled(40));
  place(mFilter, std::max(Scaled(60), static_cast<int>(area.right) - left - gap));
  MoveWindow(mList, 0, bar, area.right, std::max(0, static_cast<int>(area.bottom) - bar), TRUE);
}

LRESULT CALLBACK TraceWindow::MeasurePainting(HWND list, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                              DWORD_PTR window) {
  const auto begin = std::chrono::steady_clock::now();
  const LRESULT result = DefSubclassProc(list, message, wParam, lParam);
  if (message == WM_PAINT)
    reinterpret_cast<TraceWindow*>(window)->mPainting += std::chrono::steady_clock::now() - begin;
  return result;
}

// A list draws itself for its count, once more for its place, and then for its rows. While it counts as
// hidden it draws nothing. That is asked of every window's procedure and not of the list's own, which would
// no longer follow the count with its scroll bar. It is painted behind what the user has pressed meanwhile.
void TraceWindow::ShowRows(int count, bool toTheLast, bool withBar) const {
  DefWindowProcW(mList, WM_SETREDRAW, FALSE, 0);
  ListView_SetItemCountEx(mList, count, LVSICF_NOSCROLL);
  if (toTheLast) ListView_EnsureVisible(mList, count - 1, FALSE);
  DefWindowProcW(mList, WM_SETREDRAW, TRUE, 0);
  if (!withBar) RedrawWindow(mList, nullptr, nullptr, RDW_VALIDATE | RDW_NOFRAME);  // hiding has marked it
  RedrawWindow(mList, nullptr, nullptr,
               RDW_INVALIDATE | RDW_ERASE | (withBar ? RDW_FRAME : 0) | RDW_NOCHILDREN);
}

// The last row is followed as long as the user has it in view.
void TraceWindow::ShowNew() {
  if (IsIconic(Handle()) || !IsWindowVisible(Handle())) return;
  mView.Update(kRowsAtOnce);
  const std::size_t count = mView.Count();
  const bool isAsShown = count == mShownCount && (mView.IsPaused() || mStore.End() == mShownEnd);
  if (isAsShown && !mBarIsOld) return;
  const int bottom = ListView_GetTopIndex(mList) + ListView_GetCountPerPage(mList);
  const bool follows = static_cast<std::size_t>(bottom) >= mShownCount;
  const bool isFlood = mStore.End() >= mShownEnd + static_cast<std::size_t>(ListView_GetCountPerPage(mList));
  const UINT least = isFlood ? kFloodPeriod_ms : kRefreshPeriod_ms;
  mShownCount = count;
  mShownEnd = mStore.End();
  const auto begin = std::chrono::steady_clock::now();
  mBarIsOld = isFlood && begin < mBarDrawn + kFloodPeriodOfBar;
  if (!mBarIsOld) mBarDrawn = begin;
  ShowRows(static_cast<int>(count), follows && count != 0 && !mView.IsPaused(), !mBarIsOld);
  // The painting is that of the last time, which has come since.
  const auto cost = std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::steady_clock::now() - begin + std::exchange(mPainting, {}));
  const auto period = std::clamp(static_cast<UINT>(kShareOfDrawing * cost.count()), least, kLongestPeriod_ms);
  SetTimer(Handle(), kRefreshTimer, period, nullptr);
}

bool TraceWindow::Translate(MSG& message) {
  if (message.message == WM_KEYDOWN && message.hwnd == mList && GetKeyState(VK_CONTROL) < 0) {
    if (message.wParam == 'C') return Copy(), true;
    if (message.wParam == 'A') {
      ListView_SetItemState(mList, -1, LVIS_SELECTED, LVIS_SELECTED);
      return true;
    }
  }
  return IsDialogMessageW(Handle(), &message) != FALSE;
}

LRESULT TraceWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_SIZE:
      if (mList) Arrange();
      break;
    case WM_SETFOCUS:
      SetFocus(mList);
      return 0;
    case WM_TIMER:
      ShowNew();
      return 0;
    case WM_COMMAND:
      OnControl(LOWORD(wParam), HIWORD(wParam));
      return 0;
    case WM_NOTIFY:
      return OnNotify(*reinterpret_cast<NMHDR*>(lParam));
    case WM_CLOSE:  // the window is only put away
      PutAway();
      return 0;
    default:
      break;
  }
  return Default(message, wParam, lParam);
}

void TraceWindow::OnControl(int id, int notification) {
  if (id == kPause && notification == BN_CLICKED) {
    mView.Pause(Button_GetCheck(mPause) == BST_CHECKED);
  } else if (id == kClear && notification == BN_CLICKED) {
    mStore.Clear();
    Restart();
  } else if (id == kFilter && notification == EN_CHANGE) {
    mView.SetFilter(TextOf(mFilter));
    ListView_SetItemState(mList, -1, 0, LVIS_SELECTED);
    mShownEnd = ~mShownEnd;
    ShowNew();
  }
}

LRESULT TraceWindow::OnNotify(NMHDR& header) {
  if (header.hwndFrom != mList) return 0;
  if (header.code == LVN_GETDISPINFOW) GiveText(reinterpret_cast<NMLVDISPINFOW&>(header).item);
  if (header.code == NM_CUSTOMDRAW) return OnDraw(reinterpret_cast<NMLVCUSTOMDRAW&>(header));
  return 0;
}

void TraceWindow::GiveText(LVITEMW& item) const {
  if ((item.mask & LVIF_TEXT) == 0) return;
  const TraceRow* row = mView.At(static_cast<std::size_t>(item.iItem));
  mText = row ? TraceText(*row, static_cast<TraceColumn>(item.iSubItem), mView.NumberBase()) : std::wstring();
  item.pszText = mText.data();
}

LRESULT TraceWindow::OnDraw(NMLVCUSTOMDRAW& draw) const {
  if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
  if (draw.nmcd.dwDrawStage != CDDS_ITEMPREPAINT) return CDRF_DODEFAULT;
  const TraceRow* row = mView.At(draw.nmcd.dwItemSpec);
  const COLORREF colour =
      row ? kColours[static_cast<int>(ServiceOf(row->identifier, row->extended))] : CLR_DEFAULT;
  if (colour != CLR_DEFAULT) {
    draw.clrText = RGB(0, 0, 0);
    draw.clrTextBk = colour;
  }
  return CDRF_NEWFONT;
}

// What is selected, or everything.
void TraceWindow::Copy() const {
  std::wstring text;
  const auto add = [&](std::size_t position) {
    if (const TraceRow* row = mView.At(position)) text += TraceLine(*row, mView.NumberBase()) + L"\r\n";
  };
  std::size_t copied = 0;
  if (ListView_GetSelectedCount(mList) != 0) {
    for (int item = ListView_GetNextItem(mList, -1, LVNI_SELECTED); item >= 0 && copied < kMostCopied;
         ++copied) {
      add(static_cast<std::size_t>(item));
      item = ListView_GetNextItem(mList, item, LVNI_SELECTED);
    }
  } else {
    const std::size_t count = mView.Count();
    for (std::size_t row = count - std::min(count, kMostCopied); row < count; ++row) add(row);
  }
  PutOnClipboard(Handle(), text);
}

}  // namespace NWorkbench
