#include "host/runtime/can_message.h"

namespace NRuntime {

HRESULT CanMessage::GetIdentifier(std::uint32_t* identifier) {
  return HandOut(mSeen.frame.identifier, identifier);
}

HRESULT CanMessage::GetExtended(std::uint32_t* extended) {
  return HandOut<std::uint32_t>((mSeen.frame.flags & NSdk::kFrameExtended) != 0, extended);
}

HRESULT CanMessage::GetDataLength(std::uint32_t* size) {
  return HandOut(mSeen.frame.flags & NSdk::kFrameDlcMask, size);
}

HRESULT CanMessage::GetChannel(std::uint32_t* channel) { return HandOut(mSeen.channel, channel); }

HRESULT CanMessage::GetDirection(std::uint32_t* direction) {
  return HandOut<std::uint32_t>(mSeen.direction, direction);
}

HRESULT CanMessage::GetRemote(std::uint32_t* remote) {
  return HandOut<std::uint32_t>((mSeen.frame.flags & NSdk::kFrameRemote) != 0, remote);
}

HRESULT CanMessage::GetTimeStamp(std::int64_t* time_ns) {
  return HandOut<std::int64_t>(mSeen.time.count(), time_ns);
}

HRESULT CanMessage::CopyData(std::uint32_t offset, std::uint8_t* buffer, std::uint32_t size) {
  if (!buffer) return E_POINTER;
  // Callers stay within the data length; one that does not must not read foreign memory.
  if (offset > sizeof mSeen.frame.data || size > sizeof mSeen.frame.data - offset) return E_INVALIDARG;
  std::memcpy(buffer, mSeen.frame.data + offset, size);
  return S_OK;
}

bool ReadMessage(NSdk::ICANMessage& message, NSdk::CanFrame& frame) {
  NSdk::CanFrame read;
  std::uint32_t extended = 0, remote = 0, size = 0;
  if (FAILED(message.GetIdentifier(&read.identifier)) || FAILED(message.GetExtended(&extended)) ||
      FAILED(message.GetRemote(&remote)) || FAILED(message.GetDataLength(&size)) || size > sizeof read.data) {
    return false;
  }
  if (!remote && size != 0 && FAILED(message.CopyData(0, read.data, size))) return false;
  read.flags = size | (remote ? NSdk::kFrameRemote : 0) | (extended ? NSdk::kFrameExtended : 0);
  frame = read;
  return true;
}

bool IsValidFrame(const NSdk::CanFrame& frame) {
  const bool extended = (frame.flags & NSdk::kFrameExtended) != 0;
  return (frame.flags & NSdk::kFrameDlcMask) <= sizeof frame.data &&
         frame.identifier <= (extended ? kLargestExtended : kLargestStandard);
}

}  // namespace NRuntime
