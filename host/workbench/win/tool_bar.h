#pragma once

#include <windows.h>

#include <commctrl.h>

#include <functional>
#include <string>
#include <vector>

namespace NWorkbench {

/// A button, or a gap when it has no number.
struct ToolButton {
  int id = 0;
  std::wstring text;  ///< shown where there is no image
  std::wstring tip;
  std::function<HICON(int)> icon;  ///< makes the image at a size; empty: there is none
  std::uintptr_t image = 0;        ///< tells whether the image is still the same
  bool enabled = true;
  bool dropsDown = false;
};

/// The toolbar of the main window.
class ToolBar {
 public:
  explicit ToolBar(HWND parent);
  ~ToolBar();
  ToolBar(const ToolBar&) = delete;
  ToolBar& operator=(const ToolBar&) = delete;

  HWND Handle() const { return mHandle; }
  int Height() const;
  void Show(std::vector<ToolButton> buttons, bool large);
  /// Null: no such button.
  const ToolButton* Find(int id) const;
  /// Where a drop-down of a button goes, on the screen.
  POINT BelowOf(int id) const;

 private:
  bool IsSame(const std::vector<ToolButton>& buttons, bool large) const;

  HWND mHandle = nullptr;
  HIMAGELIST mImages = nullptr;
  std::vector<ToolButton> mButtons;
  bool mLarge = false;
};

}  // namespace NWorkbench
