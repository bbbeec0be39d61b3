#include "common/win/dpi.h"

namespace NCommon {
namespace {

// Systems since Windows 10 tell it of each window; before, it is the same everywhere.
using GetDpiForWindowFunction = UINT(WINAPI*)(HWND);

GetDpiForWindowFunction FindGetDpiForWindow() {
  const FARPROC function = GetProcAddress(GetModuleHandleW(L"user32.dll"), "GetDpiForWindow");
  return reinterpret_cast<GetDpiForWindowFunction>(reinterpret_cast<void*>(function));
}

}  // namespace

int DpiOf(HWND window) {
  static const GetDpiForWindowFunction getDpiForWindow = FindGetDpiForWindow();
  const UINT dpi = getDpiForWindow && window ? getDpiForWindow(window) : 0;
  if (dpi != 0) return static_cast<int>(dpi);
  const HDC context = GetDC(nullptr);
  const int systemDpi = GetDeviceCaps(context, LOGPIXELSX);
  ReleaseDC(nullptr, context);
  return systemDpi;
}

}  // namespace NCommon
