#pragma once
// The frames of the SDO protocol (CiA 301, 7.2.4.3). What stands where in the eight bytes is known here and
// nowhere else. All of them carry eight bytes; numbers are little-endian. Byte 0 opens with the command
// specifier in bits 7..5. Frames of which a transfer has many are built in place (Build...), which compilers
// do better than returning them.

#include <cstdint>
#include <cstring>
#include <span>

#include "sdk/can_frame.h"
#include "sdo/engine/channel.h"

namespace NSdo {

using SdoFrame = NSdk::CanFrame;

inline constexpr std::uint8_t kToggleBit = 0x10;
inline constexpr std::uint32_t kSegmentSize = 7;  ///< data bytes of a full segment
inline constexpr std::uint32_t kExpeditedSize = 4;

inline std::uint32_t ReadU32(const std::uint8_t* bytes) {
  return bytes[0] | (std::uint32_t{bytes[1]} << 8) | (std::uint32_t{bytes[2]} << 16) |
         (std::uint32_t{bytes[3]} << 24);
}

inline void WriteU32(std::uint8_t* bytes, std::uint32_t value) {
  for (int i = 0; i < 4; ++i) bytes[i] = static_cast<std::uint8_t>(value >> (8 * i));
}

// --- Any frame ------------------------------------------------------------------------------------------

/// COB-ID of a received frame: the identifier, with bit 29 for a 29-bit one.
inline std::uint32_t CobIdOf(const SdoFrame& frame) {
  return frame.identifier | ((frame.flags & NSdk::kFrameExtended) != 0 ? kCobIdExtended : 0);
}

/// Makes `frame` one of eight bytes to the identifier of a COB-ID, the data left as they are.
inline void Address(SdoFrame& frame, std::uint32_t cobId) {
  frame.identifier = cobId & kCobIdIdentifier;
  // Bit 29 of the COB-ID becomes bit 5 of the flags.
  static_assert(kCobIdExtended >> 24 == NSdk::kFrameExtended);
  frame.flags = 8 | ((cobId & kCobIdExtended) >> 24);
}

/// Empty frame of eight bytes to the identifier of a COB-ID.
inline SdoFrame FrameTo(std::uint32_t cobId, std::uint8_t command) {
  SdoFrame frame;
  Address(frame, cobId);
  frame.data[0] = command;
  return frame;
}

/// Server's commands as bits 7..5 (command) and 1..0 (sub-command, where the command has one) of byte 0 tell
/// them apart: command * 4 + sub-command, 0..31.
inline constexpr unsigned CommandKeyOf(unsigned command, unsigned subCommand) {
  return command * 4 + subCommand;
}
inline constexpr unsigned kServerUploadSegment = 0;
inline constexpr unsigned kServerDownloadSegment = 1;
inline constexpr unsigned kServerUploadInitiate = 2;
inline constexpr unsigned kServerDownloadInitiate = 3;
inline constexpr unsigned kServerAbort = 4;
inline constexpr unsigned kServerBlockDownload = 5;  ///< sub-commands: 0 initiate, 1 end, 2 sub-block
inline constexpr unsigned kServerBlockUpload = 6;    ///< sub-commands: 0 and 2 initiate, 1 end

/// Does the frame name this object? Bytes 1..3: index low, index high, sub-index.
inline bool NamesObject(const SdoFrame& frame, std::uint16_t index, std::uint8_t subindex) {
  return frame.data[1] == (index & 0xFF) && frame.data[2] == index >> 8 && frame.data[3] == subindex;
}

/// Abort, both directions (7.2.4.3.17).
///   byte 0     100 0 0000
///   byte 1..3  index low, index high, sub-index
///   byte 4..7  abort code
SdoFrame AbortFrame(const SdoChannel& ch, std::uint32_t code);
inline std::uint32_t AbortCode(const SdoFrame& frame) { return ReadU32(frame.data + 4); }

/// Byte 0 and seven bytes of data, of a segment in either kind of download.
inline void BuildFullSegment(SdoFrame& frame, std::uint8_t command, const std::uint8_t* data) {
  frame.data[0] = command;
  std::memcpy(frame.data + 1, data, kSegmentSize);
}
/// The same with `size` bytes, 0..7; unused ones are 0.
void BuildShortSegment(SdoFrame& frame, std::uint8_t command, const std::uint8_t* data, std::uint32_t size);

// --- Upload ---------------------------------------------------------------------------------------------

/// Initiate, client to server (7.2.4.3.6).
///   byte 0     010 0 0000
///   byte 1..3  index low, index high, sub-index
SdoFrame UploadRequest(const SdoChannel& ch);

/// Initiate, server to client (7.2.4.3.6).
///   byte 0     010 0 nn e s   nn unused data bytes (valid if e = s = 1), e expedited, s size indicated
///   byte 1..3  index low, index high, sub-index
///   byte 4..7  e = 1: data;  e = 0, s = 1: total size in bytes
inline bool IsExpedited(const SdoFrame& frame) { return (frame.data[0] & 2) != 0; }
inline bool IsSizeIndicated(const SdoFrame& frame) { return (frame.data[0] & 1) != 0; }
inline std::uint32_t IndicatedSize(const SdoFrame& frame) { return ReadU32(frame.data + 4); }
/// Without a size all four bytes count.
inline std::span<const std::uint8_t> ExpeditedData(const SdoFrame& frame) {
  const std::size_t unused = IsSizeIndicated(frame) ? (frame.data[0] >> 2) & 3u : 0u;
  return {frame.data + 4, kExpeditedSize - unused};
}

/// Segment request, client to server (7.2.4.3.7).
///   byte 0     011 t 0000     t toggle
inline void BuildUploadSegmentRequest(SdoFrame& frame, std::uint32_t cobId, std::uint8_t toggle) {
  Address(frame, cobId);
  frame.data[0] = static_cast<std::uint8_t>(0x60 | toggle);
}

/// Segment, either direction (7.2.4.3.4, 7.2.4.3.7).
///   byte 0     000 t nnn c    t toggle, nnn unused data bytes, c last segment
///   byte 1..7  data
inline std::uint8_t ToggleOf(const SdoFrame& frame) { return frame.data[0] & kToggleBit; }
inline bool IsLastSegment(const SdoFrame& frame) { return (frame.data[0] & 1) != 0; }
/// Seven bytes, and more to come.
inline bool IsFullSegment(const SdoFrame& frame) { return (frame.data[0] & 0x0F) == 0; }
inline std::span<const std::uint8_t> SegmentData(const SdoFrame& frame) {
  return {frame.data + 1, kSegmentSize - ((frame.data[0] >> 1) & 7u)};
}

// --- Download -------------------------------------------------------------------------------------------

/// Initiate with the data in it, client to server, 1 to 4 bytes (7.2.4.3.3).
///   byte 0     001 0 nn 1 1   nn unused data bytes
///   byte 1..3  index low, index high, sub-index
///   byte 4..7  data
SdoFrame ExpeditedDownloadRequest(const SdoChannel& ch);

/// Initiate of a segmented download, client to server (7.2.4.3.3).
///   byte 0     001 0 00 0 1
///   byte 1..3  index low, index high, sub-index
///   byte 4..7  total size in bytes
SdoFrame SegmentedDownloadRequest(const SdoChannel& ch);

/// Does the server answer a segment (001 t 0000), not the initiate request (011 0 0000)?
inline bool AnswersSegment(const SdoFrame& frame) { return frame.data[0] >> 5 == kServerDownloadSegment; }

/// Byte 0 of a segment of `size` bytes; only the last one may be short. Layout as above.
inline std::uint8_t DownloadSegmentCommand(std::uint8_t toggle, std::uint32_t size, bool last) {
  return static_cast<std::uint8_t>(((kSegmentSize - size) << 1) | toggle | (last ? 1u : 0u));
}

// --- Block download -------------------------------------------------------------------------------------

/// Initiate, client to server (7.2.4.3.9).
///   byte 0     110 00 c s 0   c client can make the CRC, s size indicated; both 1
///   byte 1..3  index low, index high, sub-index
///   byte 4..7  total size in bytes
SdoFrame BlockDownloadRequest(const SdoChannel& ch);

/// Initiate, server to client (7.2.4.3.9).
///   byte 0     101 00 c 00    c server can check the CRC
///   byte 1..3  index low, index high, sub-index
///   byte 4     segments per sub-block, 1..127
inline std::uint8_t ServerBlockSize(const SdoFrame& frame) { return frame.data[4]; }

/// Segment of a sub-block, either direction (7.2.4.3.10, 7.2.4.3.14).
///   byte 0     c sssssss      c last segment of all, s sequence number 1..127 within the sub-block
///   byte 1..7  data
inline constexpr std::uint8_t kLastBlockSegment = 0x80;
inline std::uint8_t BlockSequence(const SdoFrame& frame) { return frame.data[0] & 0x7F; }
inline bool IsLastBlockSegment(const SdoFrame& frame) { return (frame.data[0] & kLastBlockSegment) != 0; }

/// Acknowledge of a sub-block, server to client (7.2.4.3.10).
///   byte 0     101 000 10
///   byte 1     sequence number of the last segment that arrived in order, 0 if none did
///   byte 2     segments of the next sub-block
inline std::uint8_t AcknowledgedSequence(const SdoFrame& frame) { return frame.data[1]; }

/// End, client to server (7.2.4.3.11).
///   byte 0     110 nnn 01     nnn unused data bytes of the last segment
///   byte 1..2  CRC of all data
SdoFrame BlockDownloadEnd(const SdoChannel& ch, std::uint16_t crc);

// --- Block upload ---------------------------------------------------------------------------------------

/// Initiate, client to server (7.2.4.3.12).
///   byte 0     101 00 c 00    c client can check the CRC, 1
///   byte 1..3  index low, index high, sub-index
///   byte 4     segments per sub-block, 1..127
///   byte 5     protocol switch threshold: up to so many bytes the server may answer with a plain upload
SdoFrame BlockUploadRequest(const SdoChannel& ch, std::uint8_t switchThreshold);

/// Initiate, server to client (7.2.4.3.12).
///   byte 0     110 00 c s 0   c server makes the CRC, s size indicated
///   byte 1..3  index low, index high, sub-index
///   byte 4..7  s = 1: total size in bytes
inline bool HasServerCrc(const SdoFrame& frame) { return (frame.data[0] & 4) != 0; }
inline bool IsBlockSizeIndicated(const SdoFrame& frame) { return (frame.data[0] & 2) != 0; }

/// Start, client to server (7.2.4.3.13).
///   byte 0     101 000 11
SdoFrame BlockUploadStart(std::uint32_t cobId);

/// Acknowledge of a sub-block, client to server (7.2.4.3.14).
///   byte 0     101 000 10
///   byte 1     sequence number of the last segment that arrived in order
///   byte 2     segments of the next sub-block
SdoFrame BlockUploadAcknowledge(std::uint32_t cobId, std::uint8_t sequence, std::uint8_t blockSize);

/// End, server to client (7.2.4.3.15).
///   byte 0     110 nnn 01     nnn unused data bytes of the last segment
///   byte 1..2  CRC of all data
inline std::uint8_t UnusedBytesAtEnd(const SdoFrame& frame) { return (frame.data[0] >> 2) & 7; }
inline std::uint16_t CrcAtEnd(const SdoFrame& frame) {
  return static_cast<std::uint16_t>(frame.data[1] | (frame.data[2] << 8));
}

/// End, client to server (7.2.4.3.15).
///   byte 0     101 000 01
SdoFrame BlockUploadEnd(std::uint32_t cobId);

}  // namespace NSdo
