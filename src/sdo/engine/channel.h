#pragma once

#include <cstdint>

namespace NSdo {

inline constexpr std::uint8_t kMaxChannel = 128;
inline constexpr std::uint16_t kDefaultTimeoutMs = 2000;

/// COB-ID bits (CiA 301, 7.5.2.33).
inline constexpr std::uint32_t kCobIdNotValid = 0x80000000;
inline constexpr std::uint32_t kCobIdExtended = 0x20000000;
inline constexpr std::uint32_t kCobIdIdentifier = 0x1FFFFFFF;

inline constexpr bool IsValidCobId(std::uint32_t cobId) { return (cobId & kCobIdNotValid) == 0; }

enum class SdoState : std::uint8_t {
  Idle = 1,
  UploadInitiated = 4,
  ExpeditedDownload = 5,
  SegmentedUpload = 6,
  SegmentedDownload = 7,
  BlockUploadInitiated = 8,
  BlockUploadReceiving = 9,
  BlockUploadEnding = 10,
  BlockDownloadInitiated = 11,
  BlockDownloadSending = 12,
  BlockDownloadEnding = 13,
};

/// One client channel and the transfer on it. Owners read it; only the engine writes.
struct SdoChannel {
  std::uint16_t index = 0;
  std::uint8_t subindex = 0;
  std::uint8_t channel = 0;  ///< 1..128
  SdoState state = SdoState::Idle;
  std::uint8_t* buffer = nullptr;  ///< the caller's; a download only reads it
  std::uint8_t toggle = 0;         ///< 0 or 10h, as it stands in the frame
  std::uint16_t remainingMs = 0;
  std::uint16_t timeoutMs = kDefaultTimeoutMs;
  std::uint32_t transferred = 0;           ///< bytes sent or received so far
  std::uint32_t size = 0;                  ///< download: bytes to send; upload: capacity of the buffer
  std::uint8_t sequence = 0;               ///< block upload: last good segment of the sub-block
  std::uint8_t blockSize = 0;              ///< segments per sub-block, 1..127
  bool hasCrc = false;                     ///< block upload: the server announced CRC support
  std::uint8_t lastSegmentSize = 0;        ///< block transfer: data bytes in the final segment
  std::uint32_t abortCode = 0;             ///< last one sent or received
  std::uint32_t cobIdRx = kCobIdNotValid;  ///< server to client
  std::uint32_t cobIdTx = kCobIdNotValid;  ///< client to server
  std::uint8_t serverNode = 0;             ///< 1..127, 0 when released
};

}  // namespace NSdo
