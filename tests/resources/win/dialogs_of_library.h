#pragma once
// The dialogs and menus in a library of resources, as Windows makes them.

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

namespace NResourcesTest {

struct Control {
  HWND window;
  int id;  // -1: one that code never asks for
  std::wstring windowClass;
  std::wstring text;
  DWORD style;
  RECT place;  // pixels, within the dialog's client area
};

/// A hidden window made from a template, with its controls in tab order.
struct Dialog {
  int id;
  std::shared_ptr<void> window;
  std::wstring title;
  SIZE size;  // pixels, client area
  std::vector<Control> controls;

  HWND Handle() const { return static_cast<HWND>(window.get()); }
  HFONT Font() const;
};

struct MenuItem {
  std::wstring text;  // empty: separator
  UINT id;            // 0 of a sub-menu
  std::vector<MenuItem> items;
};

struct Menu {
  int id;
  std::vector<MenuItem> items;
};

/// Dialogs are made with the common controls of the module's manifest, once NCom::SetModuleHandle was called.
std::vector<Dialog> DialogsOf(HMODULE library);
std::vector<Menu> MenusOf(HMODULE library);

}  // namespace NResourcesTest
