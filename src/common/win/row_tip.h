#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "common/win/tracking_tip.h"

namespace NCommon {

/// Shows a text about a row of a list while the mouse rests on it, where the row's label is.
class RowTip {
 public:
  RowTip() = default;
  ~RowTip() { Detach(); }
  RowTip(const RowTip&) = delete;
  RowTip& operator=(const RowTip&) = delete;

  /// `textOf` is asked for the text of a row; it must last as long as the tip.
  void Attach(HWND list, std::function<std::wstring(int row)> textOf);
  void Detach();
  /// The rows have changed: what is shown may no longer be true.
  void Hide();

 private:
  static LRESULT CALLBACK Procedure(HWND list, UINT message, WPARAM wide, LPARAM lng, UINT_PTR id,
                                    DWORD_PTR tip);
  void OnMove(POINT place);
  void OnRest(POINT place);

  HWND mList = nullptr;
  std::function<std::wstring(int row)> mTextOf;
  TrackingTip mTip{TrackingTip::Shape::Plain};
  int mRow = -1;  // that is shown
};

}  // namespace NCommon
