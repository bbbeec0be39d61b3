#pragma once

#include "host/workbench/win/window.h"

namespace NWorkbench {

/// What the user should know: troubles of buses, blocks that are missing.
class MessagesWindow final : public ChildWindow {
 public:
  MessagesWindow(HWND client, RECT place);

  void Add(const std::wstring& text);
  void Refresh() override;

 private:
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
  void FitColumns() const;

  HWND mList = nullptr;
  int mWidestText = 0;
};

}  // namespace NWorkbench
