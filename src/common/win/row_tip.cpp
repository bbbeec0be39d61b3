#include "common/win/row_tip.h"

#include <commctrl.h>
#include <windowsx.h>

#include "common/win/guard.h"

namespace NCommon {
namespace {

constexpr UINT_PTR kSubclass = 1;

int RowAt(HWND list, POINT place) {
  LVHITTESTINFO hit = {};
  hit.pt = place;
  return static_cast<int>(SendMessageW(list, LVM_SUBITEMHITTEST, 0, reinterpret_cast<LPARAM>(&hit)));
}

void AskForRest(HWND list) {
  TRACKMOUSEEVENT track = {};
  track.cbSize = sizeof(track);
  track.dwFlags = TME_HOVER | TME_LEAVE;
  track.hwndTrack = list;
  track.dwHoverTime = HOVER_DEFAULT;
  TrackMouseEvent(&track);
}

}  // namespace

void RowTip::Attach(HWND list, std::function<std::wstring(int row)> textOf) {
  Detach();
  mTextOf = std::move(textOf);
  if (SetWindowSubclass(list, Procedure, kSubclass, reinterpret_cast<DWORD_PTR>(this))) mList = list;
}

void RowTip::Detach() {
  mTip.Destroy();
  mRow = -1;
  if (mList) RemoveWindowSubclass(mList, Procedure, kSubclass);
  mList = nullptr;
}

void RowTip::Hide() {
  mTip.Hide();
  mRow = -1;
}

LRESULT CALLBACK RowTip::Procedure(HWND list, UINT message, WPARAM wide, LPARAM lng, UINT_PTR,
                                   DWORD_PTR object) {
  if (message != WM_KEYDOWN && message != WM_NCDESTROY &&
      (message < WM_MOUSEFIRST || message > WM_MOUSELEAVE)) {
    return DefSubclassProc(list, message, wide, lng);
  }
  auto& tip = *reinterpret_cast<RowTip*>(object);
  SystemEntry<bool>(false, [&] {
    const POINT place = {GET_X_LPARAM(lng), GET_Y_LPARAM(lng)};
    switch (message) {
      case WM_MOUSEMOVE:
        tip.OnMove(place);
        break;
      case WM_MOUSEHOVER:
        tip.OnRest(place);
        break;
      case WM_MOUSELEAVE:
      case WM_MOUSEWHEEL:
      case WM_KEYDOWN:
      case WM_LBUTTONDOWN:
      case WM_RBUTTONDOWN:
        tip.Hide();
        break;
      case WM_NCDESTROY:
        tip.Detach();
        break;
      default:
        break;
    }
    return true;
  });
  return DefSubclassProc(list, message, wide, lng);
}

void RowTip::OnMove(POINT place) {
  if (mRow >= 0 && RowAt(mList, place) != mRow) Hide();
  AskForRest(mList);
}

void RowTip::OnRest(POINT place) {
  const int row = RowAt(mList, place);
  const std::wstring text = row >= 0 ? mTextOf(row) : std::wstring();
  if (text.empty()) return Hide();
  RECT label = {};
  ListView_GetItemRect(mList, row, &label, LVIR_LABEL);
  POINT corner = {label.left, label.bottom};  // below it, so that the row can still be read
  ClientToScreen(mList, &corner);
  mRow = row;
  mTip.Show(mList, corner, text);
}

}  // namespace NCommon
