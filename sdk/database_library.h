#pragma once
// The host's CAN database library: what DBC files say about the networks of a configuration. It lies beside
// the host's program as dbmanager.so or dbmanager.dll and is loaded at run time.
//
// Whoever loads the library releases every object that came out of it before the library is unloaded. Names
// are compared exactly. Texts that a database does not have are empty.

#include "sdk/com_base.h"
#include "sdk/host_application.h"

namespace NSdk {

/// What has attributes. An attribute that the database defines exists for every object of its kind: with the
/// value that is set for the object, else with its default. One without either does not exist.
struct ICanAttributes : IUnknown {
  static constexpr IID kIid = {0x4919e1f3, 0xa765, 0x4fd5, {0xa5, 0x55, 0x86, 0xf7, 0xee, 0x1d, 0xf5, 0xff}};

  /// Value of an integer, hexadecimal, floating-point or enumeration attribute (the position of its text,
  /// from 0). S_FALSE, nothing written: there is no such attribute, or it is a text.
  virtual HRESULT STDMETHODCALLTYPE GetNumber(const wchar_t* name, double* value) = 0;
  /// Value of a text or enumeration attribute. S_FALSE, nothing written: there is no such attribute, or it is
  /// a number.
  virtual HRESULT STDMETHODCALLTYPE GetText(const wchar_t* name, wchar_t** text) = 0;
};

struct ICanDatabaseNode : ICanAttributes {
  static constexpr IID kIid = {0x893d3dfd, 0xafe0, 0x4c8e, {0x98, 0x33, 0x79, 0x60, 0x33, 0x28, 0x08, 0x48}};

  virtual HRESULT STDMETHODCALLTYPE GetName(wchar_t** name) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetComment(wchar_t** comment) = 0;
};

enum CanSignalValue : std::uint32_t {
  kSignalUnsigned = 0,
  kSignalSigned = 1,
  kSignalFloat = 2,   ///< 32 bits
  kSignalDouble = 3,  ///< 64 bits
};

/// Where a signal lies in a message and what its value means: raw value * factor + offset.
struct CanSignalLayout {
  std::uint32_t startBit = 0;  ///< least significant bit, or the most significant one of a big-endian signal
  std::uint32_t bits = 0;
  std::uint32_t bigEndian = 0;
  std::uint32_t value = kSignalUnsigned;  ///< a CanSignalValue
  double factor = 1;
  double offset = 0;
  double minimum = 0;  ///< minimum and maximum both 0: none
  double maximum = 0;
};

struct ICanDatabaseSignal : ICanAttributes {
  static constexpr IID kIid = {0x10b27030, 0xd2db, 0x47a6, {0x9d, 0x92, 0x13, 0xcc, 0x3e, 0x26, 0x0e, 0xd0}};

  virtual HRESULT STDMETHODCALLTYPE GetName(wchar_t** name) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetComment(wchar_t** comment) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetUnit(wchar_t** unit) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetLayout(CanSignalLayout* layout) = 0;
  /// "M": its value says which others are there; "m3": there when that value is 3; "m3M": both; else empty.
  virtual HRESULT STDMETHODCALLTYPE GetMultiplexing(wchar_t** text) = 0;
};

struct ICanDatabaseMessage : ICanAttributes {
  static constexpr IID kIid = {0xf9b4da2b, 0x736f, 0x48b0, {0xa3, 0x31, 0xb0, 0x44, 0x23, 0x72, 0x37, 0x78}};

  virtual HRESULT STDMETHODCALLTYPE GetName(wchar_t** name) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetComment(wchar_t** comment) = 0;
  /// `extended` is not 0 for an identifier of 29 bits.
  virtual HRESULT STDMETHODCALLTYPE GetIdentifier(std::uint32_t* identifier, std::uint32_t* extended) = 0;
  /// Bytes; more than a frame holds when a transport protocol carries it.
  virtual HRESULT STDMETHODCALLTYPE GetSize(std::uint32_t* size) = 0;
  /// Name of the node that sends it; empty when it is none of the database's.
  virtual HRESULT STDMETHODCALLTYPE GetSender(wchar_t** name) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetSignalCount(std::uint32_t* count) = 0;
  /// Signal at a position from 0. E_INVALIDARG: there is none.
  virtual HRESULT STDMETHODCALLTYPE GetSignalAt(std::uint32_t position, ICanDatabaseSignal** signal) = 0;
};

/// A database that was opened. It holds all that it answers: the file may change meanwhile.
struct ICanDatabase : ICanAttributes {
  static constexpr IID kIid = {0xd21dcab1, 0x13c7, 0x46cf, {0xb5, 0xee, 0x0a, 0x81, 0x05, 0x8a, 0x00, 0x08}};

  virtual HRESULT STDMETHODCALLTYPE GetPath(wchar_t** path) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetComment(wchar_t** comment) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetNodeCount(std::uint32_t* count) = 0;
  /// Node at a position from 0, in the order of the file. E_INVALIDARG: there is none.
  virtual HRESULT STDMETHODCALLTYPE GetNodeAt(std::uint32_t position, ICanDatabaseNode** node) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetMessageCount(std::uint32_t* count) = 0;
  /// Message at a position from 0, in the order of the file. E_INVALIDARG: there is none.
  virtual HRESULT STDMETHODCALLTYPE GetMessageAt(std::uint32_t position, ICanDatabaseMessage** message) = 0;
  /// Errors that were found in the file. What they do not concern was read all the same.
  virtual HRESULT STDMETHODCALLTYPE GetErrorCount(std::uint32_t* count) = 0;
  /// Error at a position from 0: its line, and one line of text "FILE:LINE: what was expected". Either
  /// pointer may be null. E_INVALIDARG: there is none.
  virtual HRESULT STDMETHODCALLTYPE GetError(std::uint32_t position, std::uint32_t* line, wchar_t** text) = 0;
};

// Why a database could not be opened.
inline constexpr HRESULT kDatabaseMissing = static_cast<HRESULT>(0x80070002);   ///< no such file
inline constexpr HRESULT kDatabaseTooLarge = static_cast<HRESULT>(0x800700DF);  ///< more than 32 MiB
inline constexpr HRESULT kDatabaseUnreadable = static_cast<HRESULT>(0x8007001E);
inline constexpr HRESULT kNotADatabase =
    static_cast<HRESULT>(0x80040201);  ///< nothing in it is of a DBC file

struct IDatabaseManager : IUnknown {
  static constexpr IID kIid = {0x44aee3a1, 0x84a0, 0x4aef, {0xb8, 0x60, 0x59, 0xa4, 0x89, 0x75, 0x8b, 0xfa}};

  /// Where the databases that are assigned to channels stand; kept until the next call. Null: none are.
  virtual HRESULT STDMETHODCALLTYPE SetConfiguration(IConfigurationService* configuration) = 0;
  /// Assigned database by index from 1, as the configuration says now: its file and its channel
  /// (kUnknownChannel: none). Either pointer may be null. S_FALSE, nothing written: no more.
  virtual HRESULT STDMETHODCALLTYPE GetDatabaseInfo(std::uint32_t index, wchar_t** path,
                                                    std::uint32_t* channel) = 0;
  /// Opens an assigned database by index from 1. E_INVALIDARG: there is none.
  virtual HRESULT STDMETHODCALLTYPE OpenDatabase(std::uint32_t index, ICanDatabase** database) = 0;
  /// Opens any file. Failures of both are told as above.
  virtual HRESULT STDMETHODCALLTYPE OpenFile(const wchar_t* path, ICanDatabase** database) = 0;
  /// Why the last call of the two failed, one line that names the file. Empty: it did not.
  virtual HRESULT STDMETHODCALLTYPE GetFailure(wchar_t** text) = 0;
};

/// The one export of the library, "DllCreateDBManagerEx", undecorated: makes a manager.
/// E_NOINTERFACE: `iid` is not that of IDatabaseManager or IUnknown.
using DllCreateDBManagerExFunction = HRESULT(STDAPICALLTYPE*)(REFIID iid, void** manager);

}  // namespace NSdk
