#include "host/workbench/win/window.h"

#include <stdexcept>
#include <utility>

#include "host/workbench/texts.h"

namespace NWorkbench {
namespace {

Window* gBeingMade = nullptr;                             // takes the first message that comes
const std::array<const wchar_t*, 3>* gButtons = nullptr;  // of the box that is being opened
std::function<void(const std::string&)> gReport;

// The first window that becomes active is the box.
LRESULT CALLBACK NameButtons(int code, WPARAM wide, LPARAM lng) {
  if (code == HCBT_ACTIVATE && gButtons) {
    const auto& buttons = *std::exchange(gButtons, nullptr);
    const auto box = reinterpret_cast<HWND>(wide);
    SetDlgItemTextW(box, IDYES, buttons[0]);
    SetDlgItemTextW(box, IDNO, buttons[1]);
    SetDlgItemTextW(box, IDCANCEL, buttons[2]);
  }
  return CallNextHookEx(nullptr, code, wide, lng);
}

int Dpi() {
  static const int dpi = [] {
    const HDC screen = GetDC(nullptr);
    const int found = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    return found > 0 ? found : USER_DEFAULT_SCREEN_DPI;
  }();
  return dpi;
}

}  // namespace

Window::~Window() {
  if (const HWND window = std::exchange(mHandle, nullptr)) {
    SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    DestroyWindow(window);
  }
}

void Window::ReportFaultsTo(std::function<void(const std::string&)> report) { gReport = std::move(report); }

void Window::Make(const Form& form) {
  WNDCLASSEXW description = {};
  description.cbSize = sizeof description;
  description.lpfnWndProc = Receive;
  description.hInstance = GetModuleHandleW(nullptr);
  description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  description.hbrBackground = form.background;
  description.lpszClassName = form.className;
  RegisterClassExW(&description);  // from the second time on the system refuses, as it is there
  gBeingMade = this;
  const HWND made = CreateWindowExW(form.extendedStyle, form.className, form.title, form.style,
                                    form.place.left, form.place.top, form.place.right, form.place.bottom,
                                    form.parent, nullptr, description.hInstance, nullptr);
  gBeingMade = nullptr;
  if (!made) throw std::runtime_error("a window cannot be made");
}

LRESULT CALLBACK Window::Receive(HWND handle, UINT message, WPARAM wParam, LPARAM lParam) {
  auto* window = reinterpret_cast<Window*>(GetWindowLongPtrW(handle, GWLP_USERDATA));
  if (!window && gBeingMade) {
    window = std::exchange(gBeingMade, nullptr);
    window->mHandle = handle;
    SetWindowLongPtrW(handle, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(window));
  }
  if (!window) return DefWindowProcW(handle, message, wParam, lParam);
  const LRESULT result = window->Guarded(message, wParam, lParam);
  if (message == WM_NCDESTROY && GetWindowLongPtrW(handle, GWLP_USERDATA) != 0) {
    SetWindowLongPtrW(handle, GWLP_USERDATA, 0);
    window->mHandle = nullptr;
  }
  return result;
}

// Nothing may be thrown through the system.
LRESULT Window::Guarded(UINT message, WPARAM wParam, LPARAM lParam) {
  try {
    return OnMessage(message, wParam, lParam);
  } catch (const std::exception& error) {
    if (gReport) gReport(error.what());
    return 0;
  }
}

void ChildWindow::MakeChild(HWND client, const wchar_t* className, const wchar_t* title, RECT place,
                            bool visible) {
  const DWORD shown = visible ? WS_VISIBLE : 0;
  Make({className, title, WS_CHILD | WS_CLIPCHILDREN | WS_CLIPSIBLINGS | WS_OVERLAPPEDWINDOW | shown,
        WS_EX_MDICHILD | WS_EX_CONTROLPARENT, client, place,
        reinterpret_cast<HBRUSH>(static_cast<INT_PTR>(COLOR_BTNFACE + 1))});
  SetProgramIcon(Handle(), ICON_SMALL);
}

// The system keeps account of the windows inside another.
ChildWindow::~ChildWindow() {
  if (Handle()) ::SendMessageW(GetParent(Handle()), WM_MDIDESTROY, reinterpret_cast<WPARAM>(Handle()), 0);
}

void ChildWindow::PutAway() {
  ShowWindow(Handle(), SW_HIDE);
  ::SendMessageW(GetParent(Handle()), WM_MDINEXT, reinterpret_cast<WPARAM>(Handle()), 0);
}

void SetProgramIcon(HWND window, WPARAM kind) {
  constexpr int kNumber = 1;
  const int size = GetSystemMetrics(kind == ICON_SMALL ? SM_CXSMICON : SM_CXICON);
  const HANDLE icon =
      LoadImageW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(kNumber), IMAGE_ICON, size, size, LR_SHARED);
  if (icon) ::SendMessageW(window, WM_SETICON, kind, reinterpret_cast<LPARAM>(icon));
}

void ChildWindow::Activate() {
  if (!Handle()) return;
  ShowWindow(Handle(), SW_SHOW);
  if (IsIconic(Handle())) ShowWindow(Handle(), SW_RESTORE);
  ::SendMessageW(GetParent(Handle()), WM_MDIACTIVATE, reinterpret_cast<WPARAM>(Handle()), 0);
}

// A click on a control of a window within makes that control the active one, and the frame around it only by
// this.
LRESULT ChildWindow::Default(UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_MOUSEACTIVATE) {
    const HWND client = GetParent(Handle());
    const auto active = reinterpret_cast<HWND>(::SendMessageW(client, WM_MDIGETACTIVE, 0, 0));
    if (active != Handle()) ::SendMessageW(client, WM_MDIACTIVATE, reinterpret_cast<WPARAM>(Handle()), 0);
  }
  return DefMDIChildProcW(Handle(), message, wParam, lParam);
}

int Scaled(int length) { return MulDiv(length, Dpi(), USER_DEFAULT_SCREEN_DPI); }

int Unscaled(int length) { return MulDiv(length, USER_DEFAULT_SCREEN_DPI, Dpi()); }

RECT WorkArea(HWND window) {
  MONITORINFO monitor = {};
  monitor.cbSize = sizeof monitor;
  GetMonitorInfoW(MonitorFromWindow(window, MONITOR_DEFAULTTOPRIMARY), &monitor);
  return monitor.rcWork;
}

HFONT DialogFont() {
  static const HFONT font = [] {
    NONCLIENTMETRICSW metrics = {};
    metrics.cbSize = sizeof metrics;
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
    return CreateFontIndirectW(&metrics.lfMessageFont);
  }();
  return font;
}

HWND MakeControl(HWND parent, const wchar_t* className, const wchar_t* text, DWORD style, int id) {
  const DWORD edge = style & WS_BORDER ? WS_EX_CLIENTEDGE : 0;
  const HWND control =
      CreateWindowExW(edge, className, text, (style & ~WS_BORDER) | WS_CHILD | WS_VISIBLE, 0, 0, 0, 0, parent,
                      reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr), nullptr);
  if (!control) throw std::runtime_error("a control cannot be made");
  ::SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(DialogFont()), TRUE);
  return control;
}

std::wstring TextOf(HWND control) {
  std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(control)) + 1, L'\0');
  text.resize(static_cast<std::size_t>(GetWindowTextW(control, text.data(), static_cast<int>(text.size()))));
  return text;
}

NConfiguration::Window PlaceOf(HWND window) {
  WINDOWPLACEMENT placement = {};
  placement.length = sizeof placement;
  GetWindowPlacement(window, &placement);
  const RECT& frame = placement.rcNormalPosition;
  NConfiguration::Window place;
  place.x = Unscaled(frame.left);
  place.y = Unscaled(frame.top);
  place.width = Unscaled(frame.right - frame.left);
  place.height = Unscaled(frame.bottom - frame.top);
  place.open = (GetWindowLongW(window, GWL_STYLE) & WS_VISIBLE) != 0;
  place.minimized = IsIconic(window) != FALSE;
  place.maximized = IsZoomed(window) || (place.minimized && (placement.flags & WPF_RESTORETOMAXIMIZED) != 0);
  return place;
}

void PutAt(HWND window, const NConfiguration::Window& place) {
  if (place.width <= 0 || place.height <= 0) return;
  WINDOWPLACEMENT placement = {};
  placement.length = sizeof placement;
  GetWindowPlacement(window, &placement);
  RECT& frame = placement.rcNormalPosition;
  const LONG left = Scaled(place.x), top = Scaled(place.y);
  const LONG width = Scaled(place.width), height = Scaled(place.height);
  const RECT wanted = {left, top, left + width, top + height};
  const bool isInside = (GetWindowLongW(window, GWL_STYLE) & WS_CHILD) != 0;
  if (isInside || MonitorFromRect(&wanted, MONITOR_DEFAULTTONULL)) {
    frame = wanted;
  } else {
    frame = {frame.left, frame.top, frame.left + width, frame.top + height};
  }
  placement.showCmd = SW_SHOWNOACTIVATE;
  if (place.maximized) placement.showCmd = SW_SHOWMAXIMIZED;
  if (place.minimized) placement.showCmd = SW_SHOWMINNOACTIVE;
  placement.flags = place.maximized ? WPF_RESTORETOMAXIMIZED : 0;
  SetWindowPlacement(window, &placement);
}

int Ask(HWND owner, const std::wstring& text, UINT kind) {
  return MessageBoxW(owner, text.c_str(), Text(TextId::AppName), kind);
}

int AskWith(HWND owner, const std::wstring& text, std::array<const wchar_t*, 3> buttons) {
  gButtons = &buttons;
  const HHOOK hook = SetWindowsHookExW(WH_CBT, NameButtons, nullptr, GetCurrentThreadId());
  const int answer = Ask(owner, text, MB_YESNOCANCEL | MB_ICONQUESTION);
  UnhookWindowsHookEx(hook);
  gButtons = nullptr;
  return answer;
}

}  // namespace NWorkbench
