#include "common/win/tracking_tip.h"

#include <commctrl.h>

#include "com/module_scope.h"
#include "common/win/dpi.h"
#include "common/win/guard.h"

namespace NCommon {
namespace {

constexpr UINT_PTR kHideTimer = 0x4F54;  // beside those of the tool tip itself
constexpr int kWidest = 400;             // pixels at 96 dpi; longer lines are broken

// The only tool of the tip, without extent of its own. Its window is the one that owns the tip: the system
// takes the outermost one that `CreateWindowExW` is told of.
TTTOOLINFOW ToolOf(HWND owner) {
  TTTOOLINFOW tool = {};
  tool.cbSize = TTTOOLINFOW_V1_SIZE;
  tool.uFlags = TTF_TRACK | TTF_ABSOLUTE | TTF_IDISHWND | TTF_TRANSPARENT;
  tool.hwnd = owner;
  tool.uId = reinterpret_cast<UINT_PTR>(owner);
  return tool;
}

LRESULT SendToTip(HWND tip, UINT message, WPARAM wide, TTTOOLINFOW& tool) {
  return SendMessageW(tip, message, wide, reinterpret_cast<LPARAM>(&tool));
}

void CALLBACK HideInTime(HWND tip, UINT, UINT_PTR id, DWORD) {
  SystemEntry<bool>(false, [&] {
    KillTimer(tip, id);
    TTTOOLINFOW tool = ToolOf(GetWindow(tip, GW_OWNER));
    return SendToTip(tip, TTM_TRACKACTIVATE, FALSE, tool) != 0;
  });
}

}  // namespace

void TrackingTip::Show(HWND owner, POINT place, const std::wstring& text, UINT duration_ms) {
  if (!Make(owner)) return;
  KillTimer(mTip, kHideTimer);
  TTTOOLINFOW tool = ToolOf(mOwner);
  std::wstring shown = text;
  while (!shown.empty() && shown.back() == L'\n') shown.pop_back();
  tool.lpszText = shown.data();
  SendToTip(mTip, TTM_UPDATETIPTEXTW, 0, tool);
  SendMessageW(mTip, TTM_TRACKPOSITION, 0, MAKELPARAM(place.x, place.y));
  SendToTip(mTip, TTM_TRACKACTIVATE, TRUE, tool);
  SetWindowPos(mTip, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
  if (duration_ms != 0) SetTimer(mTip, kHideTimer, duration_ms, HideInTime);
}

void TrackingTip::Hide() {
  if (!IsWindow(mTip)) return;
  KillTimer(mTip, kHideTimer);
  TTTOOLINFOW tool = ToolOf(mOwner);
  SendToTip(mTip, TTM_TRACKACTIVATE, FALSE, tool);
}

void TrackingTip::Destroy() {
  if (IsWindow(mTip)) DestroyWindow(mTip);
  mTip = nullptr;
}

bool TrackingTip::Make(HWND window) {
  const HWND owner = GetAncestor(window, GA_ROOT);
  if (owner == mOwner && IsWindow(mTip)) return true;
  Destroy();
  const DWORD style = WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX | (mShape == Shape::Balloon ? TTS_BALLOON : 0);
  mTip = CreateWindowExW(WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, style, CW_USEDEFAULT, CW_USEDEFAULT,
                         CW_USEDEFAULT, CW_USEDEFAULT, owner, nullptr,
                         static_cast<HINSTANCE>(NCom::ModuleHandle()), nullptr);
  if (!mTip) return false;
  mOwner = owner;
  SendMessageW(mTip, TTM_SETMAXTIPWIDTH, 0, Scaled(kWidest, owner));
  TTTOOLINFOW tool = ToolOf(owner);
  wchar_t nothing[] = L"";
  tool.lpszText = nothing;
  return SendToTip(mTip, TTM_ADDTOOLW, 0, tool) != FALSE;
}

void ShowBalloonAt(TrackingTip& balloon, HWND field, const std::wstring& text) {
  SetFocus(field);
  SendMessageW(field, EM_SETSEL, 0, -1);
  RECT area = {};
  GetWindowRect(field, &area);
  const POINT middle = {(area.left + area.right) / 2, (area.top + area.bottom) / 2};
  balloon.Show(GetParent(field), middle, text, kBalloonDuration_ms);
}

}  // namespace NCommon
