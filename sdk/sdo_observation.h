#pragma once
// SDO uploads of other devices as the module follows them on the bus: the values that it collects, and who
// decides which are worth following.

#include "sdk/can_message.h"
#include "sdk/com_base.h"

namespace NSdk {

/// One value of an object dictionary: index, sub-index and the bytes of the value.
struct ICANopenDataObject : IUnknown {
  static constexpr IID kIid = {0x0345a537, 0x1405, 0x4441, {0xa4, 0x1b, 0xe0, 0xa8, 0xd6, 0x1a, 0x8c, 0xf5}};

  /// Either pointer may be null.
  virtual HRESULT STDMETHODCALLTYPE GetIndex(std::uint16_t* index, std::uint8_t* subindex) = 0;
  /// Bytes of the value.
  virtual HRESULT STDMETHODCALLTYPE GetSize(std::uint32_t* size) = 0;
  /// A value of up to four bytes, little-endian. E_INVALIDARG: null result pointer; E_FAIL: more than four
  /// bytes.
  virtual HRESULT STDMETHODCALLTYPE GetUnsigned(std::uint32_t* value) = 0;
  /// The same 32 bits.
  virtual HRESULT STDMETHODCALLTYPE GetSigned(std::int32_t* value) = 0;
  /// The unsigned value as a number, not its bits. Errors as for GetUnsigned.
  virtual HRESULT STDMETHODCALLTYPE GetFloat(float* value) = 0;
  /// Copies at most bufferSize - 1 bytes of the value and a terminating zero. E_INVALIDARG: no buffer.
  virtual HRESULT STDMETHODCALLTYPE GetString(std::uint32_t bufferSize, char* text) = 0;
  /// Copies at most bufferSize bytes of the value and says how many.
  virtual HRESULT STDMETHODCALLTYPE GetBytes(std::uint32_t bufferSize, std::uint8_t* data,
                                             std::uint32_t* copied) = 0;
  /// Frees the memory of the value, which is empty afterwards.
  virtual HRESULT STDMETHODCALLTYPE FreeValue() = 0;
  /// Overwrites `count` bytes from `offset` on. E_INVALIDARG: they would reach beyond the value.
  virtual HRESULT STDMETHODCALLTYPE WriteBytes(std::uint32_t offset, std::uint32_t count,
                                               const std::uint8_t* data) = 0;
  /// Replaces the value. Without data a value of more than four bytes is filled with zeros, and a shorter one
  /// keeps the 32 bits that were there.
  virtual HRESULT STDMETHODCALLTYPE SetValue(std::uint32_t size, const std::uint8_t* data) = 0;
};

enum SdoRequestKind : std::uint32_t {
  kSdoUploadRequest = 1,
};

/// An SDO transfer that a client has just asked a server for.
struct SdoRequest {
  std::uint32_t cobId = 0;  ///< client to server, 601h to 67Fh
  std::uint16_t index = 0;
  std::uint8_t subindex = 0;
  std::uint32_t size = 0;  ///< bytes, where the request tells; else 0
  std::uint32_t kind = 0;  ///< an SdoRequestKind
};

/// Who an SDO manager works for.
struct ICANopenSDManagerDelegate : IUnknown {
  static constexpr IID kIid = {0xab138e0e, 0x7193, 0x49b5, {0x9b, 0xbc, 0x12, 0xe8, 0x45, 0x29, 0x76, 0xa9}};

  /// Answer 1: follow this upload. Anything else, or a failure: leave it.
  virtual HRESULT STDMETHODCALLTYPE QueryUpload(const SdoRequest* request, std::uint32_t* answer) = 0;
  /// An upload that was followed is complete. `cobId` is that of the request.
  virtual HRESULT STDMETHODCALLTYPE OnUploadComplete(std::uint32_t cobId, std::uint32_t channel,
                                                     ICANopenDataObject* object) = 0;
};

/// Follows the SDO uploads of other devices; sends nothing.
struct ICANopenSDManager : IUnknown {
  static constexpr IID kIid = {0x0611cfa7, 0xa839, 0x4790, {0x89, 0xdc, 0x0b, 0x79, 0x90, 0x15, 0xaa, 0xc7}};

  /// A message seen on the bus. E_FAIL: one of its fields cannot be read.
  virtual HRESULT STDMETHODCALLTYPE ProcessMessage(ICANMessage* message) = 0;
  /// Forgets the uploads that are under way.
  virtual HRESULT STDMETHODCALLTYPE Reset() = 0;
  /// Time has passed, in milliseconds. An upload without a frame for 500 ms is given up.
  virtual HRESULT STDMETHODCALLTYPE Tick(std::uint32_t elapsed_ms) = 0;
};

/// The SDO manager as its owner sees it.
struct ICANopenSDManagerOwner : IUnknown {
  static constexpr IID kIid = {0x7aba0488, 0x0b1d, 0x46c8, {0xaa, 0x2f, 0xaf, 0xe2, 0x16, 0x5f, 0x8d, 0x8c}};

  /// Replaces the delegate, which is kept until then; null: none.
  virtual HRESULT STDMETHODCALLTYPE SetDelegate(ICANopenSDManagerDelegate* delegate) = 0;
};

}  // namespace NSdk
