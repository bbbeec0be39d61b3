#pragma once
// The plug-in object: what a host creates first of a module (ProgID "HarlowPlugIn.PlugIn").

#include "sdk/com_base.h"
#include "sdk/commands.h"
#include "sdk/host_application.h"

namespace NSdk {

struct IPlugIn : IUnknown {
  static constexpr IID kIid = {0x72958504, 0xec62, 0x4d15, {0x87, 0x8e, 0x00, 0x62, 0x02, 0x84, 0xd0, 0xd4}};

  /// Name of the plug-in. E_POINTER: null result pointer; E_OUTOFMEMORY.
  virtual HRESULT STDMETHODCALLTYPE GetName(wchar_t** name) = 0;
  /// Binds the plug-in to its host. Called once, before any block is created.
  virtual HRESULT STDMETHODCALLTYPE Initialise(IHostApplication* application) = 0;
  /// Withdraws whatever Initialise has set up and releases the host application. Called after the last block
  /// is gone.
  virtual HRESULT STDMETHODCALLTYPE ShutDown() = 0;
};

struct IVersion : IUnknown {
  static constexpr IID kIid = {0x06a40db9, 0xdf51, 0x4f87, {0xa2, 0x81, 0xfc, 0xbb, 0x08, 0x24, 0x6d, 0xb3}};

  virtual HRESULT STDMETHODCALLTYPE GetVersion(std::uint32_t* majorNumber, std::uint32_t* minorNumber,
                                               std::uint32_t* build) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetProductName(wchar_t** name) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetDescription(wchar_t** description) = 0;
  /// E_NOTIMPL where a plug-in has none.
  virtual HRESULT STDMETHODCALLTYPE GetReleaseNotes(wchar_t** text) = 0;
};

/// What a plug-in adds to dialogs and context menus of the host.
struct IPlugInExtensions : IUnknown {
  static constexpr IID kIid = {0xaae88706, 0x0a05, 0x4a8a, {0x82, 0x82, 0x9d, 0x0d, 0x7b, 0x7f, 0xc2, 0x6d}};

  /// `container` is asked for IPageContainer.
  virtual HRESULT STDMETHODCALLTYPE AddPages(IUnknown* container) = 0;
  /// Adds commands for the selection to a context menu; `iid` names the kind of list that is being built.
  virtual HRESULT STDMETHODCALLTYPE AddContextCommands(REFIID iid, ICommandList* list,
                                                       ISelectionContext* selection) = 0;
};

}  // namespace NSdk
