#pragma once
// What the module knows of the host's CAN channels and of the CANopen nodes on them, from the databases that
// are assigned to the channels and the device descriptions that those name. The plug-in object is asked for
// IDatabaseNodes by QueryInterface.

#include "sdk/com_base.h"
#include "sdk/value_objects.h"

namespace NSdk {

/// Higher-layer protocols that the databases of a channel mark it with, as bits.
enum ChannelProtocol : std::uint32_t {
  kProtocolJ1939 = 1,
  kProtocolCANopen = 2,
  kProtocolDeviceNet = 4,
  kProtocolAerospace = 8,
  kProtocolNmea = 16,
};

/// An object of a node without sub-objects, or a sub-object. Both texts are allocated for the caller, who
/// frees each with CoTaskMemFree.
struct DatabaseObject {
  std::uint16_t index = 0;  ///< 1000h and above
  std::uint8_t subindex = 0;
  std::uint32_t size = 0;            ///< bytes of a value; 0 where its length varies
  std::uint32_t variableLength = 0;  ///< non-zero for texts, octet strings and domains
  std::uint32_t writable = 0;
  wchar_t* label = nullptr;  ///< "(ReadWrite) Producer heartbeat time"
  wchar_t* value = nullptr;  ///< as the description gives it; may be empty
};

/// A CANopen node of a database. It keeps what it was read with.
struct IDatabaseNode : IUnknown {
  static constexpr IID kIid = {0xb56f6ed9, 0xa543, 0x4f55, {0x90, 0xe0, 0x23, 0xa5, 0x15, 0x23, 0x1a, 0x4b}};

  virtual HRESULT STDMETHODCALLTYPE GetName(wchar_t** name) = 0;
  /// As the database gives it: more than 127 is possible.
  virtual HRESULT STDMETHODCALLTYPE GetNodeId(std::uint32_t* nodeId) = 0;
  /// Path of the node's description. S_FALSE, nothing written: the database names none that is there.
  virtual HRESULT STDMETHODCALLTYPE GetDescription(wchar_t** path) = 0;
  /// 0 when the description cannot be loaded.
  virtual HRESULT STDMETHODCALLTYPE GetObjectCount(std::uint32_t* count) = 0;
  /// Object at a position from 0, in the order of the description. E_INVALIDARG: there is none.
  virtual HRESULT STDMETHODCALLTYPE GetObjectAt(std::uint32_t position, DatabaseObject* object) = 0;
  virtual HRESULT STDMETHODCALLTYPE GetTpdoCount(std::uint32_t* count) = 0;
  /// TPDO at a position from 0: its COB-ID with all flag bits, and its number from 0. Either pointer may be
  /// null. E_INVALIDARG: there is none.
  virtual HRESULT STDMETHODCALLTYPE GetTpdoAt(std::uint32_t position, std::uint32_t* cobId,
                                              std::uint32_t* number) = 0;
};

struct IDatabaseNodes : IUnknown {
  static constexpr IID kIid = {0xc9b83139, 0x0e67, 0x44cc, {0x8a, 0xe1, 0xf2, 0xc7, 0x57, 0x47, 0x7b, 0x96}};

  /// CAN channels of the host, at most 33. Databases are read again if their assignment has changed.
  virtual HRESULT STDMETHODCALLTYPE GetChannelCount(std::uint32_t* count) = 0;
  /// Channel at a position from 0, in the host's order: its number, a ChannelProtocol set, and the name that
  /// the module shows, "CAN 2 (CANopen)". E_INVALIDARG: there is none.
  virtual HRESULT STDMETHODCALLTYPE GetChannelAt(std::uint32_t position, std::uint32_t* number,
                                                 std::uint32_t* protocols, wchar_t** name) = 0;
  /// The CANopen nodes of the databases of a channel, IDatabaseNode, in their order, read now. Fails with the
  /// result of the host's database library when a database cannot be opened.
  virtual HRESULT STDMETHODCALLTYPE GetNodes(std::uint32_t channel, IArray** nodes) = 0;
};

}  // namespace NSdk
