#pragma once
// The SDO protocol as its server sees it (CiA 301, 7.2.4.3): what requests say, and the answers. Every frame
// has eight bytes; numbers are little-endian.

#include <optional>

#include "host/devices/object_dictionary.h"
#include "sdk/can_frame.h"

namespace NDevices {

inline constexpr std::uint32_t kSdoFrameSize = 8;
inline constexpr std::uint32_t kExpeditedBytes = 4;
inline constexpr std::size_t kSegmentBytes = 7;
inline constexpr std::uint8_t kMaxBlockSize = 127;

/// What a client wants.
enum class SdoCommand : std::uint8_t {
  DownloadSegment,
  DownloadInitiate,
  UploadInitiate,
  UploadSegment,
  Abort,
  BlockUploadInitiate,
  BlockUploadEnd,
  BlockUploadAcknowledge,
  BlockUploadStart,
  BlockDownloadInitiate,
  BlockDownloadEnd,
  Unknown,
};
inline constexpr std::size_t kSdoCommandCount = 12;

/// Of a frame that is no segment of a block: bits 7..5 of byte 0, and in block transfers the sub-command.
SdoCommand CommandOf(const NSdk::CanFrame& frame);

/// Bytes 1..3 of each initiating request, and of answers to it:
///   byte 1..2  index
///   byte 3     sub-index
ObjectAddress AddressIn(const NSdk::CanFrame& frame);

// Requests ----------------------------------------------------------------------------------------------

/// Download initiate (7.2.4.3.3).
///   byte 0     001 0 nn e s   nn unused bytes (e = s = 1), e expedited, s size indicated
///   byte 4..7  e = 1: data;  e = 0, s = 1: size in bytes
struct DownloadRequest {
  bool expedited;
  std::optional<std::uint32_t> size;
  BytesView data;  ///< expedited: four bytes, of which `size` count if it is there. Views the frame.
};
DownloadRequest ReadDownloadRequest(const NSdk::CanFrame& frame);

/// Download segment (7.2.4.3.4) and, with c = 0, request for an upload segment (7.2.4.3.7: 011 t 0000).
///   byte 0     000 t nnn c    t toggle, nnn unused bytes, c last segment
///   byte 1..7  data
bool ToggleIn(const NSdk::CanFrame& frame);
bool IsLastSegment(const NSdk::CanFrame& frame);
BytesView SegmentData(const NSdk::CanFrame& frame);

/// Block download initiate (7.2.4.3.9).
///   byte 0     110 00 c s 0   c client makes a CRC, s size indicated
///   byte 4..7  s = 1: size in bytes
struct BlockDownloadRequest {
  bool crc = false;
  std::optional<std::uint32_t> size;
};
BlockDownloadRequest ReadBlockDownloadRequest(const NSdk::CanFrame& frame);

/// Segment of a block, both directions (7.2.4.3.10 and 7.2.4.3.14). 80h, a last segment without a number, is
/// the command of an abort.
///   byte 0     c sssssss      c last segment of all, s sequence number 1..127
///   byte 1..7  data
struct BlockSegment {
  bool last;
  std::uint8_t sequence;
  BytesView data;  ///< views the frame
};
BlockSegment ReadBlockSegment(const NSdk::CanFrame& frame);
inline bool IsAbortWithinBlock(const NSdk::CanFrame& frame) { return frame.data[0] == 0x80; }

/// Block download end (7.2.4.3.11).
///   byte 0     110 nnn 0 1    nnn unused bytes of the last segment
///   byte 1..2  CRC
struct BlockEnd {
  std::uint8_t unused;
  std::uint16_t crc;
};
BlockEnd ReadBlockEnd(const NSdk::CanFrame& frame);

/// Block upload initiate (7.2.4.3.12).
///   byte 0     101 00 c 00    c client checks a CRC
///   byte 4     segments per sub-block
///   byte 5     protocol switch threshold in bytes, 0 = no switch
struct BlockUploadRequest {
  bool crc;
  std::uint8_t blockSize;
  std::uint8_t switchThreshold;
};
BlockUploadRequest ReadBlockUploadRequest(const NSdk::CanFrame& frame);

/// Acknowledge of a sub-block, both directions (7.2.4.3.14 and 7.2.4.3.10).
///   byte 0     101 000 10
///   byte 1     last sequence number that arrived in order
///   byte 2     segments of the next sub-block
struct BlockAcknowledge {
  std::uint8_t sequence;
  std::uint8_t blockSize;
};
BlockAcknowledge ReadBlockAcknowledge(const NSdk::CanFrame& frame);

// Answers; `cobId` is that from the server to the client -------------------------------------------------

/// 100 0 0000, index, sub-index, code (7.2.4.3.17).
NSdk::CanFrame AbortAnswer(std::uint32_t cobId, ObjectAddress address, AbortCode code);

/// 010 0 nn 1 1 with up to four bytes of data, at least one; 010 0 00 0 1 with the size for all else
/// (7.2.4.3.6).
NSdk::CanFrame UploadAnswer(std::uint32_t cobId, ObjectAddress address, BytesView value);
/// 000 t nnn c and up to seven bytes (7.2.4.3.7).
NSdk::CanFrame UploadSegmentAnswer(std::uint32_t cobId, bool toggle, BytesView data, bool last);

/// 011 0 0000, index, sub-index (7.2.4.3.3).
NSdk::CanFrame DownloadAnswer(std::uint32_t cobId, ObjectAddress address);
/// 001 t 0000 (7.2.4.3.4).
NSdk::CanFrame DownloadSegmentAnswer(std::uint32_t cobId, bool toggle);

/// 101 00 1 00, index, sub-index, segments per sub-block; the bit says that the CRC is checked (7.2.4.3.9).
NSdk::CanFrame BlockDownloadAnswer(std::uint32_t cobId, ObjectAddress address, std::uint8_t blockSize);
/// 101 000 10, sequence number, segments of the next sub-block (7.2.4.3.10).
NSdk::CanFrame BlockDownloadAcknowledge(std::uint32_t cobId, BlockAcknowledge acknowledge);
/// 101 000 01 (7.2.4.3.11).
NSdk::CanFrame BlockDownloadEndAnswer(std::uint32_t cobId);

/// 110 00 1 1 0, index, sub-index, size; the first bit says that a CRC will come (7.2.4.3.12).
NSdk::CanFrame BlockUploadAnswer(std::uint32_t cobId, ObjectAddress address, std::uint32_t size);
/// c sssssss and up to seven bytes (7.2.4.3.14).
NSdk::CanFrame BlockUploadSegment(std::uint32_t cobId, std::uint8_t sequence, BytesView data, bool last);
/// 110 nnn 01, CRC (7.2.4.3.15).
NSdk::CanFrame BlockUploadEndAnswer(std::uint32_t cobId, BlockEnd end);

}  // namespace NDevices
