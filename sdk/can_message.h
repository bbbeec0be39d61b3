#pragma once
// CAN messages as COM objects, and the events and output that carry them.

#include "sdk/can_frame.h"
#include "sdk/com_base.h"

namespace NSdk {

/// Direction codes of a message.
enum CanDirection : std::uint32_t {
  kCanReceived = 0,     ///< came from the bus
  kCanTransmitted = 1,  ///< sent by this host
};

/// One CAN message. The queries do not test their result pointer.
struct ICANMessage : IUnknown {
  static constexpr IID kIid = {0xa0dd5dab, 0x7848, 0x49a8, {0x8c, 0xdd, 0x80, 0x5f, 0xeb, 0x48, 0x06, 0xec}};

  /// Identifier of 11 or 29 bits; bit 31 is never set.
  virtual HRESULT STDMETHODCALLTYPE GetIdentifier(std::uint32_t* identifier) = 0;
  /// Non-zero for a 29-bit identifier.
  virtual HRESULT STDMETHODCALLTYPE GetExtended(std::uint32_t* extended) = 0;
  /// Number of data bytes, 0 to 8. For a remote frame the data length code that it asks for.
  virtual HRESULT STDMETHODCALLTYPE GetDataLength(std::uint32_t* size) = 0;
  /// CAN channel of the host, from 1.
  virtual HRESULT STDMETHODCALLTYPE GetChannel(std::uint32_t* channel) = 0;
  /// A CanDirection.
  virtual HRESULT STDMETHODCALLTYPE GetDirection(std::uint32_t* direction) = 0;
  /// Non-zero for a remote frame.
  virtual HRESULT STDMETHODCALLTYPE GetRemote(std::uint32_t* remote) = 0;
  /// Time stamp: nanoseconds since the start of the measurement.
  virtual HRESULT STDMETHODCALLTYPE GetTimeStamp(std::int64_t* time_ns) = 0;
  /// Copies `size` bytes from data[offset] onward. There is no range check: the caller stays within the data
  /// length.
  virtual HRESULT STDMETHODCALLTYPE CopyData(std::uint32_t offset, std::uint8_t* buffer,
                                             std::uint32_t size) = 0;
};

/// Implemented by a block that wants the CAN messages of a measurement.
struct ICANEvents : IUnknown {
  static constexpr IID kIid = {0x9caad7d5, 0xd156, 0x481d, {0x86, 0x58, 0xae, 0x4b, 0x2b, 0x4f, 0x21, 0x52}};

  /// A message was seen on a channel of the measurement, received and sent ones alike. The message is valid
  /// during the call only unless the callee adds a reference. Called between the start and the stop of the
  /// measurement.
  virtual HRESULT STDMETHODCALLTYPE OnCanMessage(ICANMessage* message) = 0;
};

/// Sends on one CAN channel of the running measurement. Sending is fire-and-forget: the frame is queued in
/// order, and S_OK does not say that it reached the bus.
struct ICANOutput : IUnknown {
  static constexpr IID kIid = {0x4af58642, 0x04a6, 0x4171, {0xbe, 0xeb, 0x15, 0xd4, 0x0e, 0x39, 0xf2, 0x64}};

  /// Sends one frame. E_POINTER: null; E_INVALIDARG: data length code above 8 or identifier out of range;
  /// E_FAIL: the measurement has ended.
  virtual HRESULT STDMETHODCALLTYPE Transmit(const CanFrame* frame) = 0;
  /// The same for a message object; its channel must be that of the output.
  virtual HRESULT STDMETHODCALLTYPE TransmitMessage(ICANMessage* message) = 0;
};

}  // namespace NSdk
