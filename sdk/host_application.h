#pragma once
// The host application as a plug-in sees it.

#include "sdk/com_base.h"
#include "sdk/commands.h"
#include "sdk/setup.h"

namespace NSdk {

enum HostVariant : std::uint32_t {
  kHostHalvard = 1,  ///< has a simulation setup and a measurement setup
  kHostTesmond = 2,  ///< has a measurement setup only
};

/// The application object. Services that a host lacks are answered with E_NOINTERFACE.
struct IHostApplication : IUnknown {
  static constexpr IID kIid = {0xbee9006b, 0x398c, 0x4ee7, {0xac, 0x8e, 0xa7, 0xd2, 0x91, 0x24, 0xd1, 0x6e}};

  /// Number of the user's language; 1 = English.
  virtual HRESULT STDMETHODCALLTYPE GetLanguage(std::uint32_t* language) = 0;
  /// Base in which numbers are shown: 10 or 16.
  virtual HRESULT STDMETHODCALLTYPE GetNumberBase(std::uint32_t* base) = 0;
  /// A HostVariant.
  virtual HRESULT STDMETHODCALLTYPE GetVariant(std::uint32_t* variant) = 0;
  /// Non-zero while a measurement runs.
  virtual HRESULT STDMETHODCALLTYPE IsMeasuring(std::uint32_t* measuring) = 0;
  /// A service by its interface: ICommandRegistry, IBlockTypeRegistry, IConfigurationService,
  /// ISimulationSetup, IUserDialogs, IHostAutomation.
  virtual HRESULT STDMETHODCALLTYPE GetService(REFIID iid, void** service) = 0;
  /// Where to subscribe to events of a kind, named by the interface of their sink: IApplicationEvents,
  /// ISettingEvents, _IDatabaseSetupEvents.
  virtual HRESULT STDMETHODCALLTYPE FindEventSource(REFIID sinkIid, struct IEventSource** source) = 0;
};

/// A connection point: keeps its sinks until they are withdrawn.
struct IEventSource : IUnknown {
  static constexpr IID kIid = {0xedb29d14, 0x82a5, 0x48bb, {0xaa, 0x91, 0x3e, 0xb3, 0xec, 0xff, 0x55, 0x10}};

  /// E_NOINTERFACE: the sink does not implement the interface of this source.
  virtual HRESULT STDMETHODCALLTYPE Advise(IUnknown* sink, std::uint32_t* cookie) = 0;
  virtual HRESULT STDMETHODCALLTYPE Unadvise(std::uint32_t cookie) = 0;
};

struct IApplicationEvents : IUnknown {
  static constexpr IID kIid = {0xac15a3ad, 0xd14a, 0x4f4c, {0x86, 0x75, 0xda, 0x8b, 0x21, 0xcf, 0xf6, 0x33}};

  virtual HRESULT STDMETHODCALLTYPE OnConfigurationOpened() = 0;
  /// Channels, networks or blocks of the configuration have changed.
  virtual HRESULT STDMETHODCALLTYPE OnConfigurationChanged() = 0;
};

struct ISettingEvents : IUnknown {
  static constexpr IID kIid = {0x3e717051, 0x389a, 0x4dd0, {0x8c, 0xe0, 0xce, 0x65, 0x7e, 0xf8, 0x94, 0xb6}};

  /// Number base or another display setting has changed.
  virtual HRESULT STDMETHODCALLTYPE OnSettingsChanged() = 0;
};

/// The assignment of databases to channels has changed. Named as hosts have always named it.
struct IDatabaseSetupEvents : IUnknown {
  static constexpr IID kIid = {0x385f6180, 0xe41f, 0x4bf0, {0xba, 0x03, 0xb2, 0x34, 0x62, 0x66, 0xc9, 0xe3}};

  virtual HRESULT STDMETHODCALLTYPE OnDatabaseSetupChanged() = 0;
};
using _IDatabaseSetupEvents = IDatabaseSetupEvents;

/// Kinds of items that a configuration counts.
enum ConfigurationItem : std::uint32_t {
  kConfigurationCanChannel = 1,
};

inline constexpr std::uint32_t kUnknownChannel = 0xFFFFFFFF;

/// The configuration that is open.
struct IConfigurationService : IUnknown {
  static constexpr IID kIid = {0xa084fe61, 0x9bf2, 0x48ff, {0xb9, 0x04, 0xfa, 0xc2, 0x11, 0x82, 0x44, 0xdc}};

  /// `kind` is a ConfigurationItem.
  virtual HRESULT STDMETHODCALLTYPE GetItemCount(std::uint32_t kind, std::uint32_t* count) = 0;
  /// Path of the configuration file. S_FALSE, nothing written: the configuration was never saved.
  virtual HRESULT STDMETHODCALLTYPE GetPath(wchar_t** path) = 0;
  /// CAN channel by index from 1 in the host's order: its number. S_FALSE, nothing written: no more.
  virtual HRESULT STDMETHODCALLTYPE GetCanChannel(std::uint32_t index, std::uint32_t* channel) = 0;
  /// Database by index from 1: its file and its channel (kUnknownChannel: not assigned). S_FALSE: no more.
  virtual HRESULT STDMETHODCALLTYPE GetDatabase(std::uint32_t index, wchar_t** path,
                                                std::uint32_t* channel) = 0;
};

/// The host as other programs drive it.
struct IHostAutomation : IUnknown {
  static constexpr IID kIid = {0x0de2da43, 0x9acc, 0x419d, {0x87, 0xc8, 0x96, 0x96, 0xc2, 0x3e, 0x9a, 0xc2}};

  virtual HRESULT STDMETHODCALLTYPE GetConfigurationPath(wchar_t** path) = 0;
};

enum MessageIcon : std::uint32_t {
  kMessagePlain = 0,
  kMessageExclamation = 1,
  kMessageError = 2,
};

/// Implemented by a host that talks to the user itself, one without windows above all. Where it is offered,
/// the module opens no message box and no dialog of its own for these questions.
struct IUserDialogs : IUnknown {
  static constexpr IID kIid = {0xc176bfdb, 0xf137, 0x4fe7, {0x9b, 0xbe, 0xd4, 0x2e, 0x97, 0x4b, 0x8b, 0x25}};

  /// Shows a message; returns when the user has seen it. `icon` is a MessageIcon.
  virtual HRESULT STDMETHODCALLTYPE ShowMessage(const wchar_t* title, const wchar_t* text,
                                                std::uint32_t icon) = 0;
  /// Asks for nodes. `candidates` holds `count` node-IDs in the order in which a list would show them; the
  /// host writes a non-zero byte into `chosen` for each node that is picked. S_FALSE: nothing was picked.
  virtual HRESULT STDMETHODCALLTYPE SelectNodes(const wchar_t* title, const std::uint8_t* candidates,
                                                std::uint32_t count, std::uint8_t* chosen) = 0;
};

}  // namespace NSdk
