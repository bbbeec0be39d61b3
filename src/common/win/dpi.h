#pragma once

#include <windows.h>

namespace NCommon {

/// Dots per inch that a window is drawn for.
int DpiOf(HWND window);

/// Pixels at 96 dpi as pixels of a window.
inline int Scaled(int pixels, HWND window) { return MulDiv(pixels, DpiOf(window), 96); }
/// The reverse.
inline int Unscaled(int pixels, HWND window) { return MulDiv(pixels, 96, DpiOf(window)); }

}  // namespace NCommon
