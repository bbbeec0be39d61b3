#include "common/win/resizeable_dialog.h"

namespace NCommon {
namespace {

bool IsChild(HWND window) { return (GetWindowLongPtrW(window, GWL_STYLE) & WS_CHILD) != 0; }

Area AreaOf(const RECT& rectangle) {
  return {static_cast<std::int32_t>(rectangle.left), static_cast<std::int32_t>(rectangle.top),
          static_cast<std::int32_t>(rectangle.right), static_cast<std::int32_t>(rectangle.bottom)};
}

RECT RectangleOf(const Area& area) { return {area.left, area.top, area.right, area.bottom}; }

// Where a window may be, in the coordinates of window placements: its parent's client area, or the screen
// without the task bar, counted from the corner of the screen's usable part.
Area SpaceOf(HWND window, const RECT& wanted) {
  RECT space = {};
  if (IsChild(window)) {
    GetClientRect(GetParent(window), &space);
    return AreaOf(space);
  }
  MONITORINFO monitor = {};
  monitor.cbSize = sizeof(monitor);
  GetMonitorInfoW(MonitorFromRect(&wanted, MONITOR_DEFAULTTONEAREST), &monitor);
  space = monitor.rcWork;
  OffsetRect(&space, monitor.rcMonitor.left - space.left, monitor.rcMonitor.top - space.top);
  return AreaOf(space);
}

// An edge of a control when the window has grown; `anchored` is the control to the far edge of the window.
LONG Moved(LONG edge, LONG growth, bool anchored, bool toFarEdge) {
  return anchored && toFarEdge ? edge + growth : edge;
}

RECT MovedBy(const RECT& area, LONG wider, LONG higher, unsigned edges) {
  const bool left = (edges & kAnchorLeft) != 0;
  const bool right = (edges & kAnchorRight) != 0;
  const bool top = (edges & kAnchorTop) != 0;
  const bool bottom = (edges & kAnchorBottom) != 0;
  return {Moved(area.left, wider, right, !left), Moved(area.top, higher, bottom, !top),
          Moved(area.right, wider, right, true), Moved(area.bottom, higher, bottom, true)};
}

}  // namespace

std::wstring ZResizeableDialog::RememberedPlacement() const {
  const std::optional<Placement> placement = Window() ? CurrentPlacement() : mPlacement;
  return placement ? PlacementText(*placement) : std::wstring();
}

void ZResizeableDialog::SetPlacement(const std::wstring& text) {
  const std::optional<Placement> placement = ParsePlacement(text);
  if (!placement) return;
  mPlacement = placement;
  if (Window()) ApplyPlacement();
}

std::optional<Placement> ZResizeableDialog::CurrentPlacement() const {
  WINDOWPLACEMENT placement = {};
  placement.length = sizeof(placement);
  if (!GetWindowPlacement(Window(), &placement)) return std::nullopt;
  return Placement{AreaOf(placement.rcNormalPosition), placement.showCmd == SW_SHOWMAXIMIZED};
}

void ZResizeableDialog::ApplyPlacement() {
  WINDOWPLACEMENT placement = {};
  placement.length = sizeof(placement);
  GetWindowPlacement(Window(), &placement);
  const RECT wanted = RectangleOf(mPlacement->area);
  placement.rcNormalPosition = RectangleOf(MovedInto(mPlacement->area, SpaceOf(Window(), wanted)));
  // A hidden window stays hidden.
  const bool shown = (GetWindowLongPtrW(Window(), GWL_STYLE) & WS_VISIBLE) != 0;
  placement.showCmd = !shown ? SW_HIDE : mPlacement->maximised ? SW_SHOWMAXIMIZED : SW_SHOWNORMAL;
  SetWindowPlacement(Window(), &placement);
}

bool ZResizeableDialog::OnInit() {
  RECT client = {};
  RECT whole = {};
  GetClientRect(Window(), &client);
  GetWindowRect(Window(), &whole);
  mDesigned.clear();
  for (const AnchoredControl& anchored : mAnchored) mDesigned.push_back(DesignedArea(anchored.id));
  mDesignedClient = {client.right, client.bottom};
  mMinimum = {whole.right - whole.left, whole.bottom - whole.top};
  if (mPlacement) ApplyPlacement();
  return true;
}

RECT ZResizeableDialog::DesignedArea(int id) const {
  RECT area = {};
  GetWindowRect(Control(id), &area);
  MapWindowPoints(nullptr, Window(), reinterpret_cast<POINT*>(&area), 2);
  return area;
}

void ZResizeableDialog::OnSize(int width, int height) {
  HDWP moved = BeginDeferWindowPos(static_cast<int>(mDesigned.size()));
  for (std::size_t position = 0; position < mDesigned.size() && moved; ++position) {
    const RECT area = MovedBy(mDesigned[position], width - mDesignedClient.cx, height - mDesignedClient.cy,
                              mAnchored[position].edges);
    moved = DeferWindowPos(moved, Control(mAnchored[position].id), nullptr, area.left, area.top,
                           area.right - area.left, area.bottom - area.top, SWP_NOZORDER | SWP_NOACTIVATE);
  }
  if (moved) EndDeferWindowPos(moved);
}

void ZResizeableDialog::OnDestroy() {
  if (const auto placement = CurrentPlacement()) mPlacement = placement;
}

std::optional<LRESULT> ZResizeableDialog::OnMessage(UINT message, WPARAM, LPARAM lng) {
  if (message != WM_GETMINMAXINFO || IsChild(Window())) return std::nullopt;
  reinterpret_cast<MINMAXINFO*>(lng)->ptMinTrackSize = {mMinimum.cx, mMinimum.cy};
  return 0;
}

}  // namespace NCommon
