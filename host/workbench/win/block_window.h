#pragma once

#include "host/configuration/document.h"
#include "host/runtime/com.h"
#include "host/workbench/win/window.h"
#include "sdk/views.h"

namespace NWorkbench {

/// The frame around the window of a block.
class BlockWindow final : public ChildWindow {
 public:
  /// Throws std::runtime_error in words for the user: the block has no window. `place` is where it was the
  /// last time; `closed` is called when the user closes it.
  BlockWindow(HWND client, NRuntime::ComPtr<NSdk::IUIEventsEx> block, const std::wstring& title,
              const std::optional<NConfiguration::Window>& place, std::function<void()> closed);
  ~BlockWindow() override;

  bool Translate(MSG& message) override;
  /// Where it is now, in the coordinates of the MDI client.
  NConfiguration::Window Place() const;

 private:
  class Site;

  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
  HWND Inner() const;
  void Arrange() const;
  void Show();
  RECT Frame(NSdk::WindowSize size) const;

  NRuntime::ComPtr<NSdk::IUIEventsEx> mBlock;
  NRuntime::ComPtr<Site> mSite;
  NSdk::WindowSize mPreferred, mMinimum;
  std::function<void()> mClosed;
};

}  // namespace NWorkbench
