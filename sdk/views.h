#pragma once
// Windows of blocks, and models that views observe. Window handles cross these interfaces as void* (an HWND
// on Windows); a host without windows offers no site and calls none of this.

#include "sdk/com_base.h"

namespace NSdk {

/// Where a window may be put, implemented by the host.
struct IWindowSite : IUnknown {
  static constexpr IID kIid = {0x462c7f9a, 0x1151, 0x40e6, {0xb3, 0x2f, 0x1a, 0x4e, 0xa5, 0x83, 0x4d, 0x68}};

  virtual HRESULT STDMETHODCALLTYPE GetParentWindow(void** window) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetCaption(const wchar_t* caption) = 0;
};

struct WindowSize {
  std::int32_t width = 0;   ///< pixels at 96 dpi
  std::int32_t height = 0;  ///< pixels at 96 dpi
};

/// A block's window as the host sees it.
struct IUIEventsEx : IUnknown {
  static constexpr IID kIid = {0x6eafc4f0, 0x41ab, 0x4946, {0x81, 0x24, 0x9d, 0xc7, 0x33, 0x6f, 0xd3, 0x02}};

  /// Makes the window inside the site's parent window and shows it; the host gives it its size. S_FALSE:
  /// there is no parent window; E_FAIL: it could not be made.
  virtual HRESULT STDMETHODCALLTYPE CreateBlockWindow(IWindowSite* site) = 0;
  virtual HRESULT STDMETHODCALLTYPE DestroyBlockWindow() = 0;
  /// S_FALSE, nothing written: there is no window now.
  virtual HRESULT STDMETHODCALLTYPE GetBlockWindow(void** window) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetSizes(WindowSize* preferred, WindowSize* minimum) = 0;
  /// The block's settings dialog. S_FALSE: cancelled.
  virtual HRESULT STDMETHODCALLTYPE Configure(void* parentWindow) = 0;
};

struct IModelObserver;

/// Data that views show. Changes are counted and observers are told in time, not at once.
struct IModel : IUnknown {
  static constexpr IID kIid = {0x2d54d3b7, 0x36d2, 0x4db5, {0xa4, 0x11, 0x52, 0x77, 0x66, 0xe1, 0xeb, 0xee}};

  /// E_INVALIDARG: null result pointer.
  virtual HRESULT STDMETHODCALLTYPE GetChangeCount(std::uint32_t* count) = 0;
  virtual HRESULT STDMETHODCALLTYPE Changed(std::uint32_t code, IUnknown* object) = 0;
  virtual HRESULT STDMETHODCALLTYPE BeginUpdate() = 0;
  virtual HRESULT STDMETHODCALLTYPE EndUpdate(std::uint32_t code, IUnknown* object) = 0;
  virtual HRESULT STDMETHODCALLTYPE AddObserver(IModelObserver* observer) = 0;
  virtual HRESULT STDMETHODCALLTYPE RemoveObserver(IModelObserver* observer) = 0;
};

struct IModelObserver : IUnknown {
  static constexpr IID kIid = {0x6f3e8a41, 0x1c1d, 0x48b0, {0xad, 0xe9, 0x43, 0xbd, 0x28, 0x64, 0x3c, 0x18}};

  virtual HRESULT STDMETHODCALLTYPE OnModelAttached(IModel* model) = 0;
  virtual HRESULT STDMETHODCALLTYPE OnModelDetached(IModel* model) = 0;
  /// `object` is a hint and may be null.
  virtual HRESULT STDMETHODCALLTYPE Update(IModel* model, std::uint32_t hint, IUnknown* object) = 0;
};

/// A window on a model.
struct IView : IUnknown {
  static constexpr IID kIid = {0xca8306ce, 0x3c14, 0x421c, {0xbf, 0x3d, 0x34, 0x4e, 0x40, 0xc4, 0xbe, 0xb2}};

  virtual HRESULT STDMETHODCALLTYPE AttachWindow(IWindowSite* site) = 0;
  virtual HRESULT STDMETHODCALLTYPE DetachWindow() = 0;
};

}  // namespace NSdk
