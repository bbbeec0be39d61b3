#include "tests/windows/window_driver.h"

#include <chrono>
#include <stdexcept>

namespace NTest {

void PumpFor(int duration_ms) {
  PumpUntil([] { return false; }, duration_ms);
}

bool PumpUntil(const std::function<bool()>& condition, int timeout_ms) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeout_ms);
  while (!condition()) {
    if (std::chrono::steady_clock::now() >= end) return false;
    MsgWaitForMultipleObjects(0, nullptr, FALSE, 5, QS_ALLINPUT);
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
  }
  return true;
}

namespace {

struct Search {
  std::wstring className;
  HWND found = nullptr;
};

BOOL CALLBACK Visit(HWND window, LPARAM lng) {
  auto& search = *reinterpret_cast<Search*>(lng);
  wchar_t name[64] = {};
  GetClassNameW(window, name, 64);
  // A dialog over which another one is open is disabled.
  if (name != search.className || !IsWindowVisible(window) || !IsWindowEnabled(window)) return TRUE;
  search.found = window;
  return FALSE;
}

struct Driver {
  std::wstring className;
  std::function<void(HWND)> drive;
  int ticks = 0;  // since it was found
};
Driver* gDriver = nullptr;

// A menu takes its keys when `drive` has returned: it is given a while for them.
void CALLBACK Drive(HWND, UINT, UINT_PTR, DWORD) {
  constexpr int kMenuTicks = 200;
  const bool menu = gDriver->className == L"#32768";
  if (gDriver->ticks > 0) {
    if (menu && ++gDriver->ticks > kMenuTicks) EndMenu();
    return;
  }
  const HWND window = FindShown(gDriver->className.c_str());
  if (!window) return;
  gDriver->ticks = 1;
  gDriver->drive(window);
  if (!menu && IsWindowVisible(window)) EndDialog(window, IDCANCEL);
}

}  // namespace

double ThreadTime_ms() {
  FILETIME unused, kernel, user;
  GetThreadTimes(GetCurrentThread(), &unused, &unused, &kernel, &user);
  const auto ticks = [](FILETIME time) {
    return static_cast<double>(time.dwHighDateTime) * 4294967296.0 + static_cast<double>(time.dwLowDateTime);
  };
  return (ticks(kernel) + ticks(user)) / 1e4;
}

HWND FindShown(const wchar_t* className) {
  Search search = {className};
  EnumThreadWindows(GetCurrentThreadId(), Visit, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

void WhileOpen(const wchar_t* className, const std::function<void()>& open,
               const std::function<void(HWND)>& drive) {
  Driver driver = {className, drive, 0};
  Driver* const outer = gDriver;  // one dialog may open another
  gDriver = &driver;
  const UINT_PTR timer = SetTimer(nullptr, 0, 10, Drive);
  open();
  KillTimer(nullptr, timer);
  gDriver = outer;
  if (driver.ticks == 0) throw std::runtime_error("nothing was opened");
}

void WithFile(const std::filesystem::path& file, const std::function<void()>& open) {
  constexpr int kFileName = 0x47C;
  WhileOpen(L"#32770", open, [&](HWND dialog) {
    SetDlgItemTextW(dialog, kFileName, file.wstring().c_str());
    SendMessageW(dialog, WM_COMMAND, IDOK, 0);
  });
}

void Drag(HWND from, POINT start, HWND to, POINT end) {
  PostMessageW(from, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(start.x, start.y));
  for (int step = 1; step <= 4; ++step) {
    PostMessageW(from, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(start.x + 5 * step, start.y + 5 * step));
  }
  PumpFor(30);
  const HWND dialog = GetParent(to);
  MapWindowPoints(to, dialog, &end, 1);
  SendMessageW(dialog, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(end.x, end.y));
  SendMessageW(dialog, WM_LBUTTONUP, 0, MAKELPARAM(end.x, end.y));
  PostMessageW(from, WM_LBUTTONUP, 0, 0);  // the control is still waiting for it
  PumpFor(10);
}

std::wstring LabelOf(HWND tree, HTREEITEM entry) {
  wchar_t text[128] = {};
  TVITEMW item = {};
  item.mask = TVIF_TEXT;
  item.hItem = entry;
  item.pszText = text;
  item.cchTextMax = 128;
  SendMessageW(tree, TVM_GETITEMW, 0, reinterpret_cast<LPARAM>(&item));
  return text;
}

HTREEITEM Choose(HWND tree, std::initializer_list<const wchar_t*> labels) {
  HTREEITEM entry = nullptr;
  for (const wchar_t* label : labels) {
    entry = entry ? TreeView_GetChild(tree, entry) : TreeView_GetRoot(tree);
    while (entry && LabelOf(tree, entry) != label) entry = TreeView_GetNextSibling(tree, entry);
    if (!entry) return nullptr;
  }
  TreeView_SelectItem(tree, entry);
  SetFocus(tree);
  return entry;
}

std::wstring TextOf(HWND window) {
  wchar_t text[512] = {};
  GetWindowTextW(window, text, 512);
  return text;
}

std::wstring TipText() {
  const HWND tip = FindShown(TOOLTIPS_CLASSW);
  if (!tip) return {};
  wchar_t text[1024] = {};
  TTTOOLINFOW tool = {};
  tool.cbSize = TTTOOLINFOW_V1_SIZE;
  tool.hwnd = GetWindow(tip, GW_OWNER);
  tool.uId = reinterpret_cast<UINT_PTR>(tool.hwnd);
  tool.lpszText = text;
  SendMessageW(tip, TTM_GETTEXTW, 1024, reinterpret_cast<LPARAM>(&tool));
  return text;
}

std::wstring CellText(HWND list, int row, int column) {
  wchar_t text[256] = {};
  LVITEMW item = {};
  item.iSubItem = column;
  item.pszText = text;
  item.cchTextMax = 256;
  SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
  return text;
}

std::wstring RowText(HWND list, int row, int columns) {
  std::wstring texts;
  for (int column = 0; column < columns; ++column) {
    texts += (column == 0 ? L"" : L"|") + CellText(list, row, column);
  }
  return texts;
}

std::vector<std::wstring> MenuTexts(HMENU menu) {
  std::vector<std::wstring> texts;
  for (int position = 0; position < GetMenuItemCount(menu); ++position) {
    wchar_t text[256] = {};
    GetMenuStringW(menu, static_cast<UINT>(position), text, 256, MF_BYPOSITION);
    texts.emplace_back(text);
  }
  return texts;
}

}  // namespace NTest
