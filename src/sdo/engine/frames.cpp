#include "sdo/engine/frames.h"

namespace NSdo {

namespace {

SdoFrame Request(const SdoChannel& ch, std::uint8_t command) {
  SdoFrame frame = FrameTo(ch.cobIdTx, command);
  frame.data[1] = static_cast<std::uint8_t>(ch.index);
  frame.data[2] = static_cast<std::uint8_t>(ch.index >> 8);
  frame.data[3] = ch.subindex;
  return frame;
}

SdoFrame RequestWithNumber(const SdoChannel& ch, std::uint8_t command, std::uint32_t number) {
  SdoFrame frame = Request(ch, command);
  WriteU32(frame.data + 4, number);
  return frame;
}

}  // namespace

SdoFrame AbortFrame(const SdoChannel& ch, std::uint32_t code) { return RequestWithNumber(ch, 0x80, code); }

void BuildShortSegment(SdoFrame& frame, std::uint8_t command, const std::uint8_t* data, std::uint32_t size) {
  std::memset(frame.data, 0, sizeof frame.data);
  frame.data[0] = command;
  if (size != 0) std::memcpy(frame.data + 1, data, size);
}

SdoFrame UploadRequest(const SdoChannel& ch) { return Request(ch, 0x40); }

SdoFrame ExpeditedDownloadRequest(const SdoChannel& ch) {
  SdoFrame frame = Request(ch, static_cast<std::uint8_t>(0x23 | ((kExpeditedSize - ch.size) << 2)));
  std::memcpy(frame.data + 4, ch.buffer, ch.size);
  return frame;
}

SdoFrame SegmentedDownloadRequest(const SdoChannel& ch) { return RequestWithNumber(ch, 0x21, ch.size); }

SdoFrame BlockDownloadRequest(const SdoChannel& ch) { return RequestWithNumber(ch, 0xC6, ch.size); }

SdoFrame BlockDownloadEnd(const SdoChannel& ch, std::uint16_t crc) {
  const std::uint32_t unused = kSegmentSize - ch.lastSegmentSize;
  SdoFrame frame = FrameTo(ch.cobIdTx, static_cast<std::uint8_t>(0xC1 | (unused << 2)));
  frame.data[1] = static_cast<std::uint8_t>(crc);
  frame.data[2] = static_cast<std::uint8_t>(crc >> 8);
  return frame;
}

SdoFrame BlockUploadRequest(const SdoChannel& ch, std::uint8_t switchThreshold) {
  SdoFrame frame = Request(ch, 0xA4);
  frame.data[4] = ch.blockSize;
  frame.data[5] = switchThreshold;
  return frame;
}

SdoFrame BlockUploadStart(std::uint32_t cobId) { return FrameTo(cobId, 0xA3); }

SdoFrame BlockUploadAcknowledge(std::uint32_t cobId, std::uint8_t sequence, std::uint8_t blockSize) {
  SdoFrame frame = FrameTo(cobId, 0xA2);
  frame.data[1] = sequence;
  frame.data[2] = blockSize;
  return frame;
}

SdoFrame BlockUploadEnd(std::uint32_t cobId) { return FrameTo(cobId, 0xA1); }

}  // namespace NSdo
