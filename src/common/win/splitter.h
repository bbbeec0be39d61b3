#pragma once

#include <windows.h>

#include <functional>

namespace NCommon {

/// A bar between two parts of a window, that the user moves: with the mouse, and with the arrow keys, Home
/// and End while it has the focus (Ctrl: by single pixels). Escape takes a drag back, a double click puts the
/// bar where it was first. It is a static control of the dialog's template with SS_NOTIFY and WS_TABSTOP.
class Splitter {
 public:
  enum class Bar { Upright, Level };

  Splitter() = default;
  ~Splitter() { Detach(); }
  Splitter(const Splitter&) = delete;
  Splitter& operator=(const Splitter&) = delete;

  /// `moved` is asked to put the bar's left or upper edge at a position in the parent's client area, or as
  /// near to it as the parts allow; `reset`, to put it where it was first.
  void Attach(HWND control, Bar bar, std::function<void(int position)> moved, std::function<void()> reset);
  void Detach();

 private:
  static LRESULT CALLBACK Procedure(HWND control, UINT message, WPARAM wide, LPARAM lng, UINT_PTR id,
                                    DWORD_PTR splitter);
  bool Handle(UINT message, WPARAM wide, LPARAM lng, LRESULT& answer);
  void OnPress();
  void OnDrag();
  void EndDrag(bool takeBack);
  bool OnKey(WPARAM key);
  void Paint() const;
  void Draw(HDC device, const RECT& area) const;
  int Position() const;
  int CursorPosition() const;

  HWND mControl = nullptr;
  Bar mBar = Bar::Upright;
  std::function<void(int position)> mMoved;
  std::function<void()> mReset;
  bool mDragging = false;
  int mStart = 0;  // where the bar was when a drag began
  int mGrip = 0;   // from the bar's edge to the cursor
};

}  // namespace NCommon
