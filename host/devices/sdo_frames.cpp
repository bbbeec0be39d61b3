#include "host/devices/sdo_frames.h"

#include <algorithm>

#include "host/devices/cob_id.h"

namespace NDevices {
namespace {

using NSdk::CanFrame;

// Client command specifiers, bits 7..5 of byte 0.
constexpr SdoCommand kCommands[8] = {
    SdoCommand::DownloadSegment,        // 000
    SdoCommand::DownloadInitiate,       // 001
    SdoCommand::UploadInitiate,         // 010
    SdoCommand::UploadSegment,          // 011
    SdoCommand::Abort,                  // 100
    SdoCommand::BlockUploadInitiate,    // 101, one of four
    SdoCommand::BlockDownloadInitiate,  // 110, one of two
    SdoCommand::Unknown,                // 111
};

// Sub-commands: bits 1..0 in a block upload, bit 0 in a block download.
constexpr SdoCommand kBlockUploadCommands[4] = {SdoCommand::BlockUploadInitiate, SdoCommand::BlockUploadEnd,
                                                SdoCommand::BlockUploadAcknowledge,
                                                SdoCommand::BlockUploadStart};
constexpr SdoCommand kBlockDownloadCommands[2] = {SdoCommand::BlockDownloadInitiate,
                                                  SdoCommand::BlockDownloadEnd};

bool HasBit(const CanFrame& frame, unsigned bit) { return (frame.data[0] >> bit & 1u) != 0; }

std::uint32_t SizeIn(const CanFrame& frame) {
  return static_cast<std::uint32_t>(ReadLittleEndian(BytesView(frame.data).subspan(4, 4)));
}

BytesView BehindCommand(const CanFrame& frame) { return BytesView(frame.data).subspan(1); }

CanFrame Answer(std::uint32_t cobId, unsigned command) {
  CanFrame frame = FrameTo(cobId, kSdoFrameSize);
  frame.data[0] = static_cast<std::uint8_t>(command);
  return frame;
}

CanFrame AddressedAnswer(std::uint32_t cobId, unsigned command, ObjectAddress address) {
  CanFrame frame = Answer(cobId, command);
  WriteLittleEndian(std::span(frame.data).subspan(1, 2), address.index);
  frame.data[3] = address.subindex;
  return frame;
}

void PutNumber(CanFrame& frame, std::uint32_t number) {
  WriteLittleEndian(std::span(frame.data).subspan(4, 4), number);
}

CanFrame SegmentAnswer(std::uint32_t cobId, unsigned command, BytesView data) {
  CanFrame frame = Answer(cobId, command);
  std::ranges::copy(data, frame.data + 1);
  return frame;
}

unsigned Bit(bool value, unsigned place) { return (value ? 1u : 0u) << place; }

}  // namespace

SdoCommand CommandOf(const CanFrame& frame) {
  const SdoCommand command = kCommands[frame.data[0] >> 5];
  if (command == SdoCommand::BlockUploadInitiate) return kBlockUploadCommands[frame.data[0] & 3];
  if (command == SdoCommand::BlockDownloadInitiate) return kBlockDownloadCommands[frame.data[0] & 1];
  return command;
}

ObjectAddress AddressIn(const CanFrame& frame) {
  return {static_cast<std::uint16_t>(frame.data[1] | frame.data[2] << 8), frame.data[3]};
}

DownloadRequest ReadDownloadRequest(const CanFrame& frame) {
  DownloadRequest request = {HasBit(frame, 1), std::nullopt, BytesView(frame.data).subspan(4)};
  if (!HasBit(frame, 0)) return request;
  request.size = request.expedited ? kExpeditedBytes - (frame.data[0] >> 2 & 3u) : SizeIn(frame);
  return request;
}

bool ToggleIn(const CanFrame& frame) { return HasBit(frame, 4); }
bool IsLastSegment(const CanFrame& frame) { return HasBit(frame, 0); }
BytesView SegmentData(const CanFrame& frame) {
  return BehindCommand(frame).first(kSegmentBytes - (frame.data[0] >> 1 & 7u));
}

BlockDownloadRequest ReadBlockDownloadRequest(const CanFrame& frame) {
  BlockDownloadRequest request = {HasBit(frame, 2), std::nullopt};
  if (HasBit(frame, 1)) request.size = SizeIn(frame);
  return request;
}

BlockSegment ReadBlockSegment(const CanFrame& frame) {
  return {HasBit(frame, 7), static_cast<std::uint8_t>(frame.data[0] & 0x7F), BehindCommand(frame)};
}

BlockEnd ReadBlockEnd(const CanFrame& frame) {
  return {static_cast<std::uint8_t>(frame.data[0] >> 2 & 7),
          static_cast<std::uint16_t>(frame.data[1] | frame.data[2] << 8)};
}

BlockUploadRequest ReadBlockUploadRequest(const CanFrame& frame) {
  return {HasBit(frame, 2), frame.data[4], frame.data[5]};
}

BlockAcknowledge ReadBlockAcknowledge(const CanFrame& frame) { return {frame.data[1], frame.data[2]}; }

CanFrame AbortAnswer(std::uint32_t cobId, ObjectAddress address, AbortCode code) {
  CanFrame frame = AddressedAnswer(cobId, 0x80, address);
  PutNumber(frame, static_cast<std::uint32_t>(code));
  return frame;
}

CanFrame UploadAnswer(std::uint32_t cobId, ObjectAddress address, BytesView value) {
  const auto size = static_cast<std::uint32_t>(value.size());
  if (size == 0 || size > kExpeditedBytes) {
    CanFrame frame = AddressedAnswer(cobId, 0x41, address);
    PutNumber(frame, size);
    return frame;
  }
  CanFrame frame = AddressedAnswer(cobId, 0x43 | (kExpeditedBytes - size) << 2, address);
  std::ranges::copy(value, frame.data + 4);
  return frame;
}

CanFrame UploadSegmentAnswer(std::uint32_t cobId, bool toggle, BytesView data, bool last) {
  const auto unused = static_cast<unsigned>(kSegmentBytes - data.size());
  return SegmentAnswer(cobId, Bit(toggle, 4) | unused << 1 | Bit(last, 0), data);
}

CanFrame DownloadAnswer(std::uint32_t cobId, ObjectAddress address) {
  return AddressedAnswer(cobId, 0x60, address);
}

CanFrame DownloadSegmentAnswer(std::uint32_t cobId, bool toggle) {
  return Answer(cobId, 0x20 | Bit(toggle, 4));
}

CanFrame BlockDownloadAnswer(std::uint32_t cobId, ObjectAddress address, std::uint8_t blockSize) {
  CanFrame frame = AddressedAnswer(cobId, 0xA4, address);
  frame.data[4] = blockSize;
  return frame;
}

CanFrame BlockDownloadAcknowledge(std::uint32_t cobId, BlockAcknowledge acknowledge) {
  CanFrame frame = Answer(cobId, 0xA2);
  frame.data[1] = acknowledge.sequence;
  frame.data[2] = acknowledge.blockSize;
  return frame;
}

CanFrame BlockDownloadEndAnswer(std::uint32_t cobId) { return Answer(cobId, 0xA1); }

CanFrame BlockUploadAnswer(std::uint32_t cobId, ObjectAddress address, std::uint32_t size) {
  CanFrame frame = AddressedAnswer(cobId, 0xC6, address);
  PutNumber(frame, size);
  return frame;
}

CanFrame BlockUploadSegment(std::uint32_t cobId, std::uint8_t sequence, BytesView data, bool last) {
  return SegmentAnswer(cobId, Bit(last, 7) | sequence, data);
}

CanFrame BlockUploadEndAnswer(std::uint32_t cobId, BlockEnd end) {
  CanFrame frame = Answer(cobId, 0xC1 | unsigned{end.unused} << 2);
  WriteLittleEndian(std::span(frame.data).subspan(1, 2), end.crc);
  return frame;
}

}  // namespace NDevices
