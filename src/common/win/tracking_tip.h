#pragma once

#include <windows.h>

#include <string>

namespace NCommon {

/// A tool tip that is shown and hidden by its owner: plain at a place, or as a balloon that points at one.
/// The texts may have several lines.
class TrackingTip {
 public:
  enum class Shape { Plain, Balloon };

  explicit TrackingTip(Shape shape) : mShape(shape) {}
  ~TrackingTip() { Destroy(); }
  TrackingTip(const TrackingTip&) = delete;
  TrackingTip& operator=(const TrackingTip&) = delete;

  /// Shows the text at a place of the screen, or changes what is shown; after `duration_ms` it goes by
  /// itself, 0 keeps it. The tip belongs to `owner` and goes with it.
  void Show(HWND owner, POINT place, const std::wstring& text, UINT duration_ms = 0);
  void Hide();
  void Destroy();

 private:
  bool Make(HWND window);

  Shape mShape;
  HWND mTip = nullptr;
  HWND mOwner = nullptr;
};

/// How long a balloon tells what is wrong with an entry.
inline constexpr UINT kBalloonDuration_ms = 3000;

/// Gives an entry field the focus, selects what is in it, and says in a balloon what is wrong.
void ShowBalloonAt(TrackingTip& balloon, HWND field, const std::wstring& text);

}  // namespace NCommon
