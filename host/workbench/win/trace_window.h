#pragma once

#include "host/workbench/win/window.h"

#include <commctrl.h>

#include <chrono>

#include "host/workbench/trace_view.h"

namespace NWorkbench {

/// The frames of the measurement in a list that keeps up with them.
class TraceWindow final : public ChildWindow {
 public:
  TraceWindow(HWND client, TraceStore& store, RECT place);

  bool Translate(MSG& message) override;
  void Refresh() override;
  void SetNumberBase(std::uint32_t base);
  /// The store was emptied.
  void Restart();

 private:
  static LRESULT CALLBACK MeasurePainting(HWND list, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                          DWORD_PTR window);
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
  LRESULT OnNotify(NMHDR& header);
  LRESULT OnDraw(NMLVCUSTOMDRAW& draw) const;
  void OnControl(int id, int notification);
  void MakeControls();
  void Arrange();
  void ShowNew();
  void ShowRows(int count, bool toTheLast, bool withBar) const;
  void GiveText(LVITEMW& item) const;
  void Copy() const;

  TraceStore& mStore;
  TraceView mView;
  HWND mPause = nullptr, mClear = nullptr, mFilterLabel = nullptr, mFilter = nullptr, mList = nullptr;
  std::uint64_t mShownEnd = 0;
  std::size_t mShownCount = 0;
  std::chrono::steady_clock::time_point mBarDrawn;
  bool mBarIsOld = false;
  std::chrono::steady_clock::duration mPainting{};  // since the last refresh
  mutable std::wstring mText;                       // of the cell that was asked for last
};

}  // namespace NWorkbench
