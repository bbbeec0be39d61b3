#include "common/win/splitter.h"

#include <commctrl.h>

#include <algorithm>
#include <limits>

#include "common/win/dpi.h"
#include "common/win/guard.h"

namespace NCommon {
namespace {

constexpr UINT_PTR kSubclass = 1;
constexpr int kKeyStep = 10;  // at 96 dpi
constexpr int kGripDots = 5;

}  // namespace

void Splitter::Attach(HWND control, Bar bar, std::function<void(int position)> moved,
                      std::function<void()> reset) {
  Detach();
  mBar = bar;
  mMoved = std::move(moved);
  mReset = std::move(reset);
  if (SetWindowSubclass(control, Procedure, kSubclass, reinterpret_cast<DWORD_PTR>(this))) mControl = control;
}

void Splitter::Detach() {
  if (mDragging) EndDrag(false);
  if (mControl) RemoveWindowSubclass(mControl, Procedure, kSubclass);
  mControl = nullptr;
}

LRESULT CALLBACK Splitter::Procedure(HWND control, UINT message, WPARAM wide, LPARAM lng, UINT_PTR,
                                     DWORD_PTR object) {
  LRESULT answer = 0;
  const bool handled = SystemEntry<bool>(
      false, [&] { return reinterpret_cast<Splitter*>(object)->Handle(message, wide, lng, answer); });
  return handled ? answer : DefSubclassProc(control, message, wide, lng);
}

bool Splitter::Handle(UINT message, WPARAM wide, LPARAM, LRESULT& answer) {
  switch (message) {
    case WM_NCHITTEST:
      answer = HTCLIENT;
      return true;
    case WM_GETDLGCODE:
      answer = DLGC_WANTARROWS;
      return true;
    case WM_SETCURSOR:
      SetCursor(LoadCursorW(nullptr, mBar == Bar::Upright ? IDC_SIZEWE : IDC_SIZENS));
      answer = TRUE;
      return true;
    case WM_LBUTTONDOWN:
      return OnPress(), true;
    case WM_MOUSEMOVE:
      return OnDrag(), true;
    case WM_LBUTTONUP:
    case WM_CAPTURECHANGED:
      return EndDrag(false), true;
    case WM_LBUTTONDBLCLK:
      return mReset(), true;
    case WM_KEYDOWN:
      return OnKey(wide);
    case WM_SETFOCUS:
    case WM_KILLFOCUS:
      InvalidateRect(mControl, nullptr, FALSE);
      return true;
    case WM_ERASEBKGND:
      answer = TRUE;
      return true;
    case WM_PAINT:
      return Paint(), true;
    case WM_NCDESTROY:
      Detach();
      return false;
    default:
      return false;
  }
}

int Splitter::Position() const {
  RECT area = {};
  GetWindowRect(mControl, &area);
  MapWindowPoints(nullptr, GetParent(mControl), reinterpret_cast<POINT*>(&area), 2);
  return mBar == Bar::Upright ? area.left : area.top;
}

int Splitter::CursorPosition() const {
  const DWORD place = GetMessagePos();
  POINT cursor = {static_cast<short>(LOWORD(place)), static_cast<short>(HIWORD(place))};
  ScreenToClient(GetParent(mControl), &cursor);
  return mBar == Bar::Upright ? cursor.x : cursor.y;
}

void Splitter::OnPress() {
  mStart = Position();
  mGrip = CursorPosition() - mStart;
  mDragging = true;
  SetCapture(mControl);
}

void Splitter::OnDrag() {
  if (!mDragging) return;
  if (GetKeyState(VK_ESCAPE) < 0) return EndDrag(true);
  mMoved(CursorPosition() - mGrip);
}

// Letting go of the capture comes back here.
void Splitter::EndDrag(bool takeBack) {
  if (!mDragging) return;
  mDragging = false;
  if (GetCapture() == mControl) ReleaseCapture();
  if (takeBack) mMoved(mStart);
}

bool Splitter::OnKey(WPARAM key) {
  const WPARAM back = mBar == Bar::Upright ? VK_LEFT : VK_UP;
  const WPARAM forth = mBar == Bar::Upright ? VK_RIGHT : VK_DOWN;
  const int step = GetKeyState(VK_CONTROL) < 0 ? 1 : Scaled(kKeyStep, mControl);
  if (key == back) return mMoved(Position() - step), true;
  if (key == forth) return mMoved(Position() + step), true;
  if (key == VK_HOME) return mMoved(0), true;
  if (key == VK_END) return mMoved(std::numeric_limits<short>::max()), true;
  if (key == VK_ESCAPE && mDragging) return EndDrag(true), true;
  return false;
}

// Drawn beside the screen first: nothing flickers while it moves.
void Splitter::Paint() const {
  PAINTSTRUCT paint = {};
  const HDC screen = BeginPaint(mControl, &paint);
  RECT area = {};
  GetClientRect(mControl, &area);
  const HDC memory = CreateCompatibleDC(screen);
  const HBITMAP picture = CreateCompatibleBitmap(screen, std::max(1L, area.right), std::max(1L, area.bottom));
  const HGDIOBJ before = SelectObject(memory, picture);
  Draw(memory, area);
  BitBlt(screen, 0, 0, area.right, area.bottom, memory, 0, 0, SRCCOPY);
  SelectObject(memory, before);
  DeleteObject(picture);
  DeleteDC(memory);
  EndPaint(mControl, &paint);
}

// A row of dots where the hand takes it, and the frame of what has the focus.
void Splitter::Draw(HDC device, const RECT& area) const {
  FillRect(device, &area, GetSysColorBrush(COLOR_BTNFACE));
  const bool upright = mBar == Bar::Upright;
  const int size = Scaled(2, mControl);
  for (int dot = 0; dot < kGripDots; ++dot) {
    const int along = (upright ? area.bottom : area.right) / 2 + (2 * dot - kGripDots) * size;
    const int across = ((upright ? area.right : area.bottom) - size) / 2;
    const RECT place = upright ? RECT{across, along, across + size, along + size}
                               : RECT{along, across, along + size, across + size};
    FillRect(device, &place, GetSysColorBrush(COLOR_BTNSHADOW));
  }
  if (GetFocus() == mControl) DrawFocusRect(device, &area);
}

}  // namespace NCommon
