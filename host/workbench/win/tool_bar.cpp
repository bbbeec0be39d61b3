#include "host/workbench/win/tool_bar.h"

#include <algorithm>

#include "host/workbench/win/window.h"

namespace NWorkbench {
namespace {

constexpr int kSmall = 16, kLarge = 32;  // at 96 dpi

TBBUTTON MakeButton(const ToolButton& button, HIMAGELIST images, int size) {
  TBBUTTON made = {};
  made.idCommand = button.id;
  made.fsState = static_cast<BYTE>(button.enabled ? TBSTATE_ENABLED : 0);
  if (button.id == 0) {
    made.fsStyle = BTNS_SEP;
    return made;
  }
  made.fsStyle = static_cast<BYTE>(BTNS_AUTOSIZE | (button.dropsDown ? BTNS_WHOLEDROPDOWN : BTNS_BUTTON));
  const HICON icon = button.icon ? button.icon(size) : nullptr;
  made.iBitmap = icon ? ImageList_AddIcon(images, icon) : I_IMAGENONE;
  if (icon) {
    DestroyIcon(icon);
  } else {
    made.fsStyle |= BTNS_SHOWTEXT;
    made.iString = reinterpret_cast<INT_PTR>(button.text.c_str());
  }
  return made;
}

}  // namespace

ToolBar::ToolBar(HWND parent) {
  mHandle = CreateWindowExW(0, TOOLBARCLASSNAMEW, nullptr,
                            WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | TBSTYLE_FLAT | TBSTYLE_LIST |
                                TBSTYLE_TOOLTIPS | CCS_NODIVIDER | CCS_TOP,
                            0, 0, 0, 0, parent, nullptr, GetModuleHandleW(nullptr), nullptr);
  ::SendMessageW(mHandle, TB_BUTTONSTRUCTSIZE, sizeof(TBBUTTON), 0);
  ::SendMessageW(mHandle, TB_SETEXTENDEDSTYLE, 0, TBSTYLE_EX_MIXEDBUTTONS | TBSTYLE_EX_DRAWDDARROWS);
  ::SendMessageW(mHandle, WM_SETFONT, reinterpret_cast<WPARAM>(DialogFont()), FALSE);
}

ToolBar::~ToolBar() {
  if (mImages) ImageList_Destroy(mImages);
}

int ToolBar::Height() const {
  RECT area = {};
  GetWindowRect(mHandle, &area);
  return area.bottom - area.top;
}

bool ToolBar::IsSame(const std::vector<ToolButton>& buttons, bool large) const {
  const auto same = [](const ToolButton& left, const ToolButton& right) {
    return left.id == right.id && left.text == right.text && left.image == right.image &&
           left.dropsDown == right.dropsDown;
  };
  return mImages && large == mLarge &&
         std::equal(buttons.begin(), buttons.end(), mButtons.begin(), mButtons.end(), same);
}

void ToolBar::Show(std::vector<ToolButton> buttons, bool large) {
  const bool same = IsSame(buttons, large);
  mButtons = std::move(buttons);
  mLarge = large;
  if (same) {
    for (const ToolButton& button : mButtons) {
      if (button.id != 0)
        ::SendMessageW(mHandle, TB_ENABLEBUTTON, static_cast<WPARAM>(button.id), button.enabled);
    }
    return;
  }
  while (::SendMessageW(mHandle, TB_DELETEBUTTON, 0, 0)) continue;
  const int size = Scaled(large ? kLarge : kSmall);
  const HIMAGELIST images = ImageList_Create(size, size, ILC_COLOR32 | ILC_MASK, 16, 16);
  ::SendMessageW(mHandle, TB_SETIMAGELIST, 0, reinterpret_cast<LPARAM>(images));
  if (mImages) ImageList_Destroy(mImages);
  mImages = images;
  for (const ToolButton& button : mButtons) {
    const TBBUTTON made = MakeButton(button, images, size);
    ::SendMessageW(mHandle, TB_ADDBUTTONSW, 1, reinterpret_cast<LPARAM>(&made));
  }
  ::SendMessageW(mHandle, TB_AUTOSIZE, 0, 0);
  InvalidateRect(mHandle, nullptr, TRUE);
}

const ToolButton* ToolBar::Find(int id) const {
  const auto found = std::find_if(mButtons.begin(), mButtons.end(),
                                  [&](const ToolButton& button) { return id != 0 && button.id == id; });
  return found == mButtons.end() ? nullptr : &*found;
}

POINT ToolBar::BelowOf(int id) const {
  RECT area = {};
  ::SendMessageW(mHandle, TB_GETRECT, static_cast<WPARAM>(id), reinterpret_cast<LPARAM>(&area));
  POINT place = {area.left, area.bottom};
  ClientToScreen(mHandle, &place);
  return place;
}

}  // namespace NWorkbench
