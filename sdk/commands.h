#pragma once
// Commands that a plug-in adds to the host's menus and toolbars.

#include "sdk/com_base.h"

namespace NSdk {

/// States of a command.
enum CommandState : std::uint32_t {
  kCommandShown = 0,    ///< shown; its own rules decide whether it does anything
  kCommandEnabled = 1,  ///< shown and enabled
  kCommandHidden = 2,   ///< not offered
};

/// One command. Numbers name resources of the module (or of its language library); 0 = none.
struct IAction : IUnknown {
  static constexpr IID kIid = {0x5cc44562, 0xefb3, 0x4a15, {0x8c, 0xab, 0xf6, 0xec, 0x68, 0x15, 0x2a, 0x2c}};

  /// `context` is the host's object for the invocation; it is asked for ISetupAccess where a command needs
  /// it.
  virtual HRESULT STDMETHODCALLTYPE Execute(IUnknown* context) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetCaption(wchar_t** caption) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetToolTip(wchar_t** toolTip) = 0;
  /// Numbers in the resources of the module on Windows, 0: none. A bitmap of 16 x 16 pixels in which white is
  /// transparent; icons of 16 to 32 and of 32 to 64 pixels.
  virtual HRESULT STDMETHODCALLTYPE GetImages(std::uint32_t* bitmap, std::uint32_t* smallIcon,
                                              std::uint32_t* largeIcon) = 0;
  /// A CommandState.
  virtual HRESULT STDMETHODCALLTYPE GetState(std::uint32_t* state) = 0;
};

/// A command whose button carries a menu, asked of an IAction by QueryInterface. For hosts with windows; a
/// module that makes no menus does not offer it.
struct IDropDownCommand : IUnknown {
  static constexpr IID kIid = {0xb9c8e2b2, 0x937c, 0x4e19, {0xba, 0xec, 0xba, 0x5a, 0x44, 0x0f, 0x91, 0x8c}};

  /// Makes the menu as it is now, an HMENU of a pop-up menu on Windows. The caller shows it and destroys it.
  /// Its items are numbered from `firstId` on, submenus included; those that would come behind `lastId` are
  /// left out. S_FALSE, nothing written: there is nothing to choose.
  virtual HRESULT STDMETHODCALLTYPE GetMenu(std::uint32_t firstId, std::uint32_t lastId, void** menu) = 0;
  /// Carries out the item with this number in the menu that was made last. `context` as for
  /// IAction::Execute. E_INVALIDARG: there is no such item.
  virtual HRESULT STDMETHODCALLTYPE ExecuteItem(std::uint32_t id, IUnknown* context) = 0;
};

/// A named group of commands: a submenu and a toolbar.
struct ICommandGroup : IUnknown {
  static constexpr IID kIid = {0x9007be3f, 0xae8e, 0x4ed4, {0x98, 0xaa, 0x2e, 0x27, 0xa4, 0xca, 0x2d, 0x66}};

  /// Appends a registered command. E_INVALIDARG: no such command.
  virtual HRESULT STDMETHODCALLTYPE AddCommand(const wchar_t* name) = 0;
};

struct ICommandGroups : IUnknown {
  static constexpr IID kIid = {0x56d2cfec, 0x8b3a, 0x4e2e, {0x9d, 0x2f, 0xb4, 0x42, 0xb0, 0x6d, 0x94, 0x14}};

  /// E_FAIL: there is a group of that name.
  virtual HRESULT STDMETHODCALLTYPE CreateGroup(const wchar_t* name, const wchar_t* caption,
                                                ICommandGroup** group) = 0;
  virtual HRESULT STDMETHODCALLTYPE RemoveGroup(const wchar_t* name) = 0;
};

/// Implemented by who wants to know about commands.
struct ICommandEvents : IUnknown {
  static constexpr IID kIid = {0x678efa7a, 0x0a8a, 0x467f, {0xaa, 0xde, 0x19, 0xb9, 0x37, 0x99, 0x23, 0xdb}};

  /// The host is about to show commands: states may be brought up to date.
  virtual HRESULT STDMETHODCALLTYPE OnCommandsShown() = 0;
};

/// Asked for ICommandGroups by QueryInterface.
struct ICommandRegistry : IUnknown {
  static constexpr IID kIid = {0x2ad711a8, 0xae41, 0x4909, {0xa9, 0xaa, 0x2e, 0xb7, 0x19, 0x24, 0x77, 0xe5}};

  /// The registry keeps the action until it is removed. E_FAIL: the name is taken.
  virtual HRESULT STDMETHODCALLTYPE AddCommand(const wchar_t* name, IAction* action) = 0;
  virtual HRESULT STDMETHODCALLTYPE RemoveCommand(const wchar_t* name) = 0;
  virtual HRESULT STDMETHODCALLTYPE Advise(ICommandEvents* events, std::uint32_t* cookie) = 0;
  virtual HRESULT STDMETHODCALLTYPE Unadvise(std::uint32_t cookie) = 0;
};

/// A list of commands that a context menu is built from.
struct ICommandList : IUnknown {
  static constexpr IID kIid = {0x3c2a457c, 0xfea3, 0x441e, {0xbd, 0x15, 0xf8, 0xa6, 0x95, 0xc9, 0x70, 0x20}};

  virtual HRESULT STDMETHODCALLTYPE AppendCommand(const wchar_t* name) = 0;
};

}  // namespace NSdk
