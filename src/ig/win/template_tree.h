#pragma once

#include <windows.h>

#include <commctrl.h>

#include <vector>

#include "ig/message_templates.h"

namespace NIg {

/// The tree of templates on the left of the generator's window.
class TemplateTree {
 public:
  /// Shows these templates, groups unfolded.
  void Fill(HWND control, std::vector<MessageTemplate> templates);
  HWND Control() const { return mControl; }
  /// The item of the selected template; null: none, or a root.
  const NCanopen::ZMsgItemInfo* Selected() const;
  const NCanopen::ZMsgItemInfo* ItemOf(HTREEITEM entry) const;
  /// Selects what a menu was asked for with the mouse.
  void SelectAt(POINT screen) const;
  /// Where a menu for the keyboard's entry opens, on the screen.
  POINT MenuPlace() const;

 private:
  HTREEITEM Add(HTREEITEM parent, const MessageTemplate& entry);

  HWND mControl = nullptr;
  std::vector<MessageTemplate> mTemplates;  // the entries point into it
};

}  // namespace NIg
