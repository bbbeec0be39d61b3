#pragma once

#include "host/runtime/com.h"
#include "host/runtime/loop.h"
#include "sdk/can_message.h"

namespace NRuntime {

/// A frame as a measurement has seen it.
struct SeenFrame {
  std::uint32_t channel = 0;
  NSdk::CanDirection direction = NSdk::kCanReceived;
  Time time{};  ///< since the start of the measurement
  NSdk::CanFrame frame;
};

/// The frame for the blocks.
class CanMessage final : public Implements<NSdk::ICANMessage> {
 public:
  explicit CanMessage(const SeenFrame& seen) : mSeen(seen) {}

  /// Nobody but the one owner holds the message: it may carry another frame.
  bool IsFree() const { return References() == 1; }
  void Refill(const SeenFrame& seen) { mSeen = seen; }

  HRESULT STDMETHODCALLTYPE GetIdentifier(std::uint32_t* identifier) override;
  HRESULT STDMETHODCALLTYPE GetExtended(std::uint32_t* extended) override;
  HRESULT STDMETHODCALLTYPE GetDataLength(std::uint32_t* size) override;
  HRESULT STDMETHODCALLTYPE GetChannel(std::uint32_t* channel) override;
  HRESULT STDMETHODCALLTYPE GetDirection(std::uint32_t* direction) override;
  HRESULT STDMETHODCALLTYPE GetRemote(std::uint32_t* remote) override;
  HRESULT STDMETHODCALLTYPE GetTimeStamp(std::int64_t* time_ns) override;
  HRESULT STDMETHODCALLTYPE CopyData(std::uint32_t offset, std::uint8_t* buffer, std::uint32_t size) override;

 private:
  SeenFrame mSeen;
};

/// Reads a message object of any origin. False: one of its queries failed, or its data length exceeds 8.
bool ReadMessage(NSdk::ICANMessage& message, NSdk::CanFrame& frame);

inline constexpr std::uint32_t kLargestStandard = 0x7FF;  ///< identifier of 11 bits
inline constexpr std::uint32_t kLargestExtended = 0x1FFFFFFF;

/// Identifier and data length code lie in their ranges.
bool IsValidFrame(const NSdk::CanFrame& frame);

}  // namespace NRuntime
