#include "ig/win/message_list.h"

#include <windowsx.h>

#include <algorithm>
#include <numeric>

#include "common/text.h"
#include "common/win/dpi.h"
#include "common/win/guard.h"
#include "common/win/list_view.h"
#include "resources/resource_ids.h"
#include "resources/text.h"

namespace NIg {
namespace {

constexpr UINT_PTR kSubclass = 1;
constexpr COLORREF kTransparent = RGB(0xFF, 0xFF, 0xFF);
constexpr int kImages[] = {IDB_IG_RESULTS, IDB_IG_RESULTS_24, IDB_IG_RESULTS_32};
constexpr ULONGLONG kFollow_ms = 100;
constexpr int kMarkHeight = 3;  // at 96 dpi

constexpr struct {
  int text;
  int width;
  bool cyclicOnly;
} kColumns[] = {
    {IDS_IG_COL_TYPE, 80, false},        {IDS_IG_COL_CYCLE, 100, true},   {IDS_IG_COL_DELAY, 140, true},
    {IDS_IG_COL_ATTRIBUTES, 400, false}, {IDS_IG_COL_RESULT, 200, false},
};

enum CheckImage : UINT { kUnchecked = 1, kChecked = 2 };

}  // namespace

// ---- the control

void MessageList::Attach(HWND control) {
  if (!SetWindowSubclass(control, Procedure, kSubclass, reinterpret_cast<DWORD_PTR>(this))) return;
  mControl = control;
  if (mImages.Load(kImages, kTransparent, control)) MakeSpacer();
  ListView_SetExtendedListViewStyle(
      control, LVS_EX_FULLROWSELECT | LVS_EX_CHECKBOXES | LVS_EX_DOUBLEBUFFER | LVS_EX_HEADERDRAGDROP);
  ListView_SetCallbackMask(control, LVIS_STATEIMAGEMASK);
  AddColumns();
  mMark = CreateWindowExW(0, WC_STATICW, nullptr, WS_CHILD | SS_BLACKRECT, 0, 0, 0, 0, control, nullptr,
                          reinterpret_cast<HINSTANCE>(GetWindowLongPtrW(control, GWLP_HINSTANCE)), nullptr);
  mTip.Attach(control, [this](int row) {
    return mBlock.Results().Text({mList, static_cast<std::size_t>(row)});
  });
  Refresh();
}

void MessageList::Detach() {
  if (!mControl) return;
  mTip.Detach();
  ListView_SetImageList(mControl, nullptr, LVSIL_SMALL);
  mImages.Reset();
  if (mSpacer) ImageList_Destroy(mSpacer);
  mSpacer = nullptr;
  mShowsImages = false;
  RemoveWindowSubclass(mControl, Procedure, kSubclass);
  mColumns.clear();
  mControl = mMark = nullptr;
}

void MessageList::AddColumns() {
  for (const auto& column : kColumns) {
    if (column.cyclicOnly && mList != NSdk::kCyclicList) continue;
    NCommon::AddColumn(mControl, NResources::LoadText(column.text), column.width);
    mColumns.push_back(column.text);
  }
}

// Lists get messages by the thousand; those that are not for it do not enter the module.
bool MessageList::Concerns(UINT message) {
  constexpr UINT kConcerned[] = {WM_GETDLGCODE,    WM_KEYDOWN, WM_CHAR,      WM_LBUTTONDOWN,
                                 WM_LBUTTONDBLCLK, WM_VSCROLL, WM_MOUSEWHEEL};
  return std::ranges::find(kConcerned, message) != std::end(kConcerned);
}

LRESULT CALLBACK MessageList::Procedure(HWND control, UINT message, WPARAM wide, LPARAM lng, UINT_PTR,
                                        DWORD_PTR object) {
  if (!Concerns(message)) return DefSubclassProc(control, message, wide, lng);
  auto* const list = reinterpret_cast<MessageList*>(object);
  const auto answer = NCommon::SystemEntry<std::optional<LRESULT>>(
      std::nullopt, [&] { return list->Handle(message, wide, lng); });
  return answer ? *answer : DefSubclassProc(control, message, wide, lng);
}

// A virtual list does not keep check boxes, so clicks on them are taken here, and so are the keys: a dialog
// would keep Enter for itself, the list would search for what Space and Ctrl with a letter type.
std::optional<LRESULT> MessageList::Handle(UINT message, WPARAM wide, LPARAM lng) {
  switch (message) {
    case WM_GETDLGCODE: {
      const auto* const asked = reinterpret_cast<const MSG*>(lng);
      if (!asked || asked->message != WM_KEYDOWN || asked->wParam != VK_RETURN) return std::nullopt;
      return DLGC_WANTMESSAGE;
    }
    case WM_KEYDOWN:
      if (mOwner.OnListKey(mList, wide)) return 0;
      return std::nullopt;
    case WM_CHAR:
      if (wide <= L' ') return 0;
      return std::nullopt;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK: {
      LVHITTESTINFO hit = {};
      hit.pt = {GET_X_LPARAM(lng), GET_Y_LPARAM(lng)};
      if (ListView_HitTest(mControl, &hit) < 0 || !(hit.flags & LVHT_ONITEMSTATEICON) ||
          hit.flags == LVHT_ONITEM) {
        return std::nullopt;
      }
      SetFocus(mControl);
      mOwner.OnCheckBox(mList, static_cast<std::size_t>(hit.iItem));
      return 0;
    }
    case WM_VSCROLL:
    case WM_MOUSEWHEEL:
      ShowDropMark(std::nullopt);
      return std::nullopt;
    default:
      return std::nullopt;
  }
}

// ---- what it shows

// Rows are as high without images as with them.
void MessageList::MakeSpacer() {
  int width = 0;
  int height = 0;
  ImageList_GetIconSize(mImages.Get(), &width, &height);
  mSpacer = ImageList_Create(1, height, ILC_COLOR, 0, 1);
  ListView_SetImageList(mControl, mSpacer, LVSIL_SMALL);
}

// The images take room of the first column only while there are some.
void MessageList::ShowImages(bool show) {
  if (show == mShowsImages || !mImages.Get()) return;
  mShowsImages = show;
  int width = 0;
  int height = 0;
  ImageList_GetIconSize(mImages.Get(), &width, &height);
  const int column = ListView_GetColumnWidth(mControl, 0);
  ListView_SetImageList(mControl, show ? mImages.Get() : mSpacer, LVSIL_SMALL);
  ListView_SetColumnWidth(mControl, 0, std::max(0, show ? column + width : column - width));
}

void MessageList::Refresh() {
  if (!mControl) return;
  ShowImages(mBlock.Results().HasAny(mList));
  mTip.Hide();
  ListView_SetItemCountEx(mControl, static_cast<int>(Items().size()), LVSICF_NOSCROLL);
  NCommon::RedrawRows(mControl);
}

void MessageList::RedrawRow(std::size_t row) {
  if (!mControl) return;
  ShowImages(mBlock.Results().HasAny(mList));
  const int position = static_cast<int>(row);
  ListView_RedrawItems(mControl, position, position);
}

void MessageList::Follow(std::size_t row) {
  const ULONGLONG now = GetTickCount64();
  if (!mControl || now - mFollowed < kFollow_ms) return;
  mFollowed = now;
  ListView_EnsureVisible(mControl, static_cast<int>(row), FALSE);
}

std::wstring MessageList::CellText(std::size_t row, int column) const {
  const NCanopen::ZMsgItemInfo& item = *Items()[row];
  switch (mColumns[static_cast<std::size_t>(column)]) {
    case IDS_IG_COL_TYPE:
      return NCommon::ToWide(item.GetTypeName());
    case IDS_IG_COL_CYCLE:
      return NCommon::ToWide(item.GetCycleText());
    case IDS_IG_COL_DELAY:
      return NCommon::ToWide(item.GetDelayText());
    case IDS_IG_COL_ATTRIBUTES:
      return NCommon::ToWide(item.GetAttributesText());
    default:
      return mBlock.Results().Text({mList, row});
  }
}

void MessageList::AnswerCell(LVITEMW& item) const {
  const auto row = static_cast<std::size_t>(item.iItem);
  if (item.iItem < 0 || row >= Items().size()) return;
  if ((item.mask & LVIF_TEXT) && item.iSubItem >= 0 &&
      static_cast<std::size_t>(item.iSubItem) < mColumns.size()) {
    NCommon::AnswerText(item, CellText(row, item.iSubItem));
  }
  if (item.mask & LVIF_IMAGE) {
    const ResultImage image = mBlock.Results().Image({mList, row});
    item.iImage = image == ResultImage::None ? I_IMAGENONE : static_cast<int>(image);
  }
  if (item.mask & LVIF_STATE) {
    item.state = INDEXTOSTATEIMAGEMASK(Items()[row]->IsEnabled() ? kChecked : kUnchecked);
    item.stateMask = LVIS_STATEIMAGEMASK;
  }
}

// The row that is being sent stands out.
LRESULT MessageList::Draw(const NMLVCUSTOMDRAW& draw) const {
  if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
  const auto current = mBlock.Results().Current();
  const bool isCurrent = mList == NSdk::kSequenceList && current && *current == draw.nmcd.dwItemSpec;
  if (draw.nmcd.dwDrawStage != CDDS_ITEMPREPAINT || !isCurrent) return CDRF_DODEFAULT;
  auto& colours = const_cast<NMLVCUSTOMDRAW&>(draw);
  colours.clrTextBk = GetSysColor(COLOR_INFOBK);
  colours.clrText = GetSysColor(COLOR_INFOTEXT);
  return CDRF_NEWFONT;
}

std::optional<LRESULT> MessageList::OnNotify(NMHDR& notification) {
  switch (notification.code) {
    case LVN_GETDISPINFOW:
      AnswerCell(reinterpret_cast<NMLVDISPINFOW&>(notification).item);
      return 0;
    case static_cast<UINT>(NM_CUSTOMDRAW):
      return Draw(reinterpret_cast<const NMLVCUSTOMDRAW&>(notification));
    default:
      return std::nullopt;
  }
}

// ---- selection

Rows MessageList::Selected() const {
  Rows rows;
  if (ListView_GetSelectedCount(mControl) == Items().size()) {
    for (std::size_t row = 0; row < Items().size(); ++row) rows.push_back(row);
    return rows;
  }
  for (int row = ListView_GetNextItem(mControl, -1, LVNI_SELECTED);
       row >= 0 && static_cast<std::size_t>(row) < Items().size();
       row = ListView_GetNextItem(mControl, row, LVNI_SELECTED)) {
    rows.push_back(static_cast<std::size_t>(row));
  }
  return rows;
}

std::optional<std::size_t> MessageList::Focused() const {
  const int row = ListView_GetNextItem(mControl, -1, LVNI_FOCUSED);
  if (row < 0 || static_cast<std::size_t>(row) >= Items().size()) return std::nullopt;
  return static_cast<std::size_t>(row);
}

void MessageList::SetSelected(std::size_t row, bool selected) {
  ListView_SetItemState(mControl, static_cast<int>(row), selected ? LVIS_SELECTED : 0, LVIS_SELECTED);
}

// Each row that changes costs messages, and so does each row of the list when all are set at once.
void MessageList::ChangeSelection(const Rows& rows) {
  const std::size_t count = Items().size();
  const Rows before = Selected();
  if (before.size() + rows.size() <= count / 2) {
    for (const std::size_t row : before) SetSelected(row, false);
    for (const std::size_t row : rows) SetSelected(row, true);
    return;
  }
  const bool most = rows.size() > count / 2;
  ListView_SetItemState(mControl, -1, most ? LVIS_SELECTED : 0u, LVIS_SELECTED);
  auto next = rows.begin();
  for (std::size_t row = 0; row < count; ++row) {
    const bool selected = next != rows.end() && *next == row;
    if (selected) ++next;
    if (selected != most) SetSelected(row, selected);
  }
}

void MessageList::Select(const Rows& rows) {
  if (!mControl) return;
  SendMessageW(mControl, WM_SETREDRAW, FALSE, 0);
  ChangeSelection(rows);
  SendMessageW(mControl, WM_SETREDRAW, TRUE, 0);
  NCommon::RedrawRows(mControl);
  if (rows.empty()) return;
  const int first = static_cast<int>(rows.front());
  ListView_SetItemState(mControl, first, LVIS_FOCUSED, LVIS_FOCUSED);
  ListView_SetSelectionMark(mControl, first);
  ListView_EnsureVisible(mControl, static_cast<int>(rows.back()), FALSE);
  ListView_EnsureVisible(mControl, first, FALSE);
}

void MessageList::SelectAll() {
  Rows rows(Items().size());
  std::iota(rows.begin(), rows.end(), std::size_t{0});
  Select(rows);
}

std::size_t MessageList::InsertPosition() const {
  const Rows rows = Selected();
  return rows.empty() ? Items().size() : rows.back() + 1;
}

// ---- dropping

std::optional<std::size_t> MessageList::DropPosition(POINT screen) const {
  RECT area = {};
  GetWindowRect(mControl, &area);
  if (!PtInRect(&area, screen) || !IsWindowEnabled(mControl)) return std::nullopt;
  ScreenToClient(mControl, &screen);
  RECT row = {};
  const int top = ListView_GetTopIndex(mControl);
  if (Items().empty() || !ListView_GetItemRect(mControl, top, &row, LVIR_BOUNDS)) return Items().size();
  const LONG height = std::max(row.bottom - row.top, 1L);
  const LONG below = screen.y - row.top + height / 2;  // the nearer edge of a row counts
  const auto position = static_cast<std::size_t>(std::max(0L, top + below / height));
  return std::min(position, Items().size());
}

void MessageList::ShowDropMark(std::optional<std::size_t> position) {
  if (!mMark) return;
  if (!position) {
    ShowWindow(mMark, SW_HIDE);
    return;
  }
  RECT area = {};
  GetClientRect(mControl, &area);
  const int thickness = NCommon::Scaled(kMarkHeight, mControl);
  RECT row = {};
  RECT heading = {};
  GetClientRect(ListView_GetHeader(mControl), &heading);
  LONG y = heading.bottom;
  if (*position > 0 && ListView_GetItemRect(mControl, static_cast<int>(*position) - 1, &row, LVIR_BOUNDS)) {
    y = row.bottom;
  }
  y = std::clamp(y - thickness / 2, heading.bottom, std::max(heading.bottom, area.bottom - thickness));
  SetWindowPos(mMark, HWND_TOP, 0, y, area.right, thickness, SWP_NOACTIVATE | SWP_SHOWWINDOW);
}

void MessageList::ScrollTowards(POINT screen) {
  RECT area = {};
  GetWindowRect(mControl, &area);
  if (!PtInRect(&area, screen)) return;
  RECT heading = {};
  RECT row = {};
  GetWindowRect(ListView_GetHeader(mControl), &heading);
  if (!ListView_GetItemRect(mControl, ListView_GetTopIndex(mControl), &row, LVIR_BOUNDS)) return;
  const LONG height = row.bottom - row.top;
  const bool up = screen.y < heading.bottom + height;
  const bool down = screen.y > area.bottom - height;
  if (!up && !down) return;
  ShowDropMark(std::nullopt);
  ListView_Scroll(mControl, 0, up ? -height : height);
  UpdateWindow(mControl);
}

}  // namespace NIg
