#include "dialogs_of_library.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "com/module_scope.h"

namespace NResourcesTest {
namespace {

std::vector<int> NumbersOf(HMODULE library, const wchar_t* type) {
  std::vector<int> numbers;
  const auto take = [](HMODULE, const wchar_t*, wchar_t* name, LONG_PTR list) -> BOOL {
    reinterpret_cast<std::vector<int>*>(list)->push_back(static_cast<int>(reinterpret_cast<ULONG_PTR>(name)));
    return TRUE;
  };
  EnumResourceNamesW(library, type, take, reinterpret_cast<LONG_PTR>(&numbers));
  std::ranges::sort(numbers);
  return numbers;
}

const void* Resource(HMODULE library, int number, const wchar_t* type) {
  const HRSRC found = FindResourceW(library, MAKEINTRESOURCEW(number), type);
  const void* data = found ? LockResource(LoadResource(library, found)) : nullptr;
  if (!data) throw std::runtime_error("no resource " + std::to_string(number));
  return data;
}

std::wstring TextOf(HWND window) {
  std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)), L'\0');
  GetWindowTextW(window, text.data(), static_cast<int>(text.size()) + 1);
  return text;
}

Control ControlOf(HWND dialog, HWND window) {
  Control control{window, GetDlgCtrlID(window), {}, TextOf(window), DWORD(GetWindowLongW(window, GWL_STYLE)),
                  {}};
  if (control.id == 0xFFFF) control.id = -1;
  wchar_t name[64];
  GetClassNameW(window, name, static_cast<int>(std::size(name)));
  control.windowClass = name;
  GetWindowRect(window, &control.place);
  MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&control.place), 2);
  return control;
}

INT_PTR CALLBACK KeepFocus(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

// A child window of a host needs a parent before it can be made.
HWND Host() {
  static const HWND host = CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW, 0, 0, 1200, 900, nullptr,
                                           nullptr, GetModuleHandleW(nullptr), nullptr);
  return host;
}

Dialog DialogOf(HMODULE library, int number) {
  const NCom::ModuleScope scope;
  const auto* dialogTemplate = static_cast<const DLGTEMPLATE*>(Resource(library, number, RT_DIALOG));
  const HWND window = CreateDialogIndirectParamW(library, dialogTemplate, Host(), KeepFocus, 0);
  if (!window) throw std::runtime_error("dialog " + std::to_string(number) + " cannot be made");
  Dialog dialog{
      number, {window, [](void* made) { DestroyWindow(static_cast<HWND>(made)); }}, TextOf(window), {}, {}};
  RECT client;
  GetClientRect(window, &client);
  dialog.size = {client.right, client.bottom};
  for (HWND child = GetWindow(window, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
    dialog.controls.push_back(ControlOf(window, child));
  }
  return dialog;
}

std::vector<MenuItem> ItemsOf(HMENU menu) {
  std::vector<MenuItem> items;
  for (int position = 0; position < GetMenuItemCount(menu); ++position) {
    wchar_t text[256] = L"";
    GetMenuStringW(menu, static_cast<UINT>(position), text, static_cast<int>(std::size(text)), MF_BYPOSITION);
    const HMENU below = GetSubMenu(menu, position);
    items.push_back(
        {text, below ? 0 : GetMenuItemID(menu, position), below ? ItemsOf(below) : std::vector<MenuItem>()});
  }
  return items;
}

}  // namespace

HFONT Dialog::Font() const { return reinterpret_cast<HFONT>(SendMessageW(Handle(), WM_GETFONT, 0, 0)); }

std::vector<Dialog> DialogsOf(HMODULE library) {
  std::vector<Dialog> dialogs;
  for (const int number : NumbersOf(library, RT_DIALOG)) dialogs.push_back(DialogOf(library, number));
  return dialogs;
}

std::vector<Menu> MenusOf(HMODULE library) {
  std::vector<Menu> menus;
  for (const int number : NumbersOf(library, RT_MENU)) {
    const HMENU menu = LoadMenuIndirectW(Resource(library, number, RT_MENU));
    menus.push_back({number, ItemsOf(menu)});
    DestroyMenu(menu);
  }
  return menus;
}

}  // namespace NResourcesTest
