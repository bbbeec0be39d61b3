#pragma once
// Settings pages that a plug-in adds to the host's channel configuration.

#include "sdk/com_base.h"

namespace NSdk {

/// Bit timing of a CAN channel as the two timing registers of a controller with a 16 MHz clock.
struct ICanChannelTiming : IUnknown {
  static constexpr IID kIid = {0x43e1df33, 0xc6d6, 0x4c04, {0x9a, 0x51, 0x88, 0xef, 0x25, 0x0e, 0x82, 0x12}};

  virtual HRESULT STDMETHODCALLTYPE GetTimingRegister0(std::uint8_t* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetTimingRegister1(std::uint8_t* value) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetTimingRegisters(std::uint8_t register0, std::uint8_t register1) = 0;
};

/// Place of a page in the host's dialog.
struct IPageSite : IUnknown {
  static constexpr IID kIid = {0x0a77c374, 0x7f01, 0x44af, {0xa4, 0x3d, 0xab, 0x47, 0x68, 0xa0, 0xe0, 0x61}};

  /// An HWND on Windows.
  virtual HRESULT STDMETHODCALLTYPE GetParentWindow(void** window) = 0;
  /// The page holds changes that were not applied.
  virtual HRESULT STDMETHODCALLTYPE PageChanged() = 0;
};

/// A page. The host creates it, sets the object that it shows, shows it, applies it, destroys it, in this
/// order.
struct IPage : IUnknown {
  static constexpr IID kIid = {0x025ede0b, 0x81cc, 0x4f6b, {0x84, 0xe1, 0x65, 0x27, 0xed, 0x7b, 0x4a, 0x99}};

  /// S_FALSE when the result pointer is null.
  virtual HRESULT STDMETHODCALLTYPE GetPageWindow(void** window) = 0;
  /// E_FAIL: null site, or the dialog could not be created.
  virtual HRESULT STDMETHODCALLTYPE Create(IPageSite* site) = 0;
  virtual HRESULT STDMETHODCALLTYPE Destroy() = 0;
  /// The channel object, which is asked for ICanChannelTiming. Null: none.
  virtual HRESULT STDMETHODCALLTYPE SetTarget(IUnknown* channel) = 0;
  /// Reads the values of the target anew and shows them.
  virtual HRESULT STDMETHODCALLTYPE Show() = 0;
  /// Writes the values into the target.
  virtual HRESULT STDMETHODCALLTYPE Apply() = 0;
  /// New client size of the page, in pixels.
  virtual HRESULT STDMETHODCALLTYPE Resize(std::int32_t width, std::int32_t height) = 0;
};

struct IPageCaption : IUnknown {
  static constexpr IID kIid = {0x7f1992ca, 0x8ef6, 0x410d, {0x91, 0x22, 0x0e, 0x30, 0x51, 0x02, 0xf8, 0x4e}};

  virtual HRESULT STDMETHODCALLTYPE GetPageCaption(wchar_t** caption) = 0;
};

struct IPageContainer : IUnknown {
  static constexpr IID kIid = {0xe0f9acce, 0x0a66, 0x4289, {0x86, 0xe7, 0x19, 0x4f, 0xe9, 0x4d, 0x86, 0x53}};

  virtual HRESULT STDMETHODCALLTYPE AddPage(IPage* page) = 0;
};

}  // namespace NSdk
