#pragma once
// Follows the SDO transfers on a bus (CiA 301, 7.2.4) by listening: what was transferred, how, and how it
// ended.

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "host/runtime/loop.h"
#include "sdk/can_frame.h"

namespace NBench {

enum class SdoDirection { Upload, Download };
enum class SdoKind { Expedited, Segmented, Block };
enum class SdoOutcome { Ok, Aborted, TimedOut };

struct SdoTransfer {
  std::uint32_t channel = 0;
  unsigned node = 0;
  std::uint16_t index = 0;
  std::uint8_t subIndex = 0;
  SdoDirection direction = SdoDirection::Upload;
  SdoKind kind = SdoKind::Expedited;
  std::uint64_t bytes = 0;
  std::vector<std::uint8_t> data;  ///< the first of them, kMaxKeptData at most
  SdoOutcome outcome = SdoOutcome::TimedOut;
  std::uint32_t abortCode = 0;  ///< 0: none was seen
  NRuntime::Time started{};
  NRuntime::Time ended{};
};

/// Follows every default SDO channel: requests with 600h + node-ID, responses with 580h + node-ID, node-IDs 1
/// to 127. A transfer on other identifiers is not seen.
class SdoObserver {
 public:
  static constexpr std::size_t kMaxKeptData = 256;

  /// The transfers that the frame has ended, mostly none; two when a request cuts off a transfer and is
  /// answered at once.
  std::vector<SdoTransfer> OnFrame(std::uint32_t channel, const NSdk::CanFrame& frame, NRuntime::Time time);
  /// What is still under way when nobody listens any more: it counts as timed out.
  std::vector<SdoTransfer> Finish(NRuntime::Time time);

 private:
  enum class Phase { Idle, Running, UploadBlock, DownloadBlock };

  struct Conversation {
    SdoTransfer transfer;
    Phase phase = Phase::Idle;
    // Segments of the sub-block under way, by sequence number: they count once they are acknowledged.
    std::array<std::array<std::uint8_t, 7>, 128> segments{};
    unsigned highestSegment = 0;  // of the sub-block, 0 = none so far
    unsigned lastSegment = 0;     // number of the segment that was marked as the last, 0 = none so far
    bool lastConfirmed = false;
    bool lastDownloadSegment = false;
  };

  void OnRequest(Conversation& conversation, const NSdk::CanFrame& frame, NRuntime::Time time);
  void OnResponse(Conversation& conversation, const NSdk::CanFrame& frame, NRuntime::Time time);
  void Begin(Conversation& conversation, SdoDirection direction, SdoKind kind, const NSdk::CanFrame& frame,
             NRuntime::Time time);
  void End(Conversation& conversation, SdoOutcome outcome, NRuntime::Time time);
  void OnAbort(Conversation& conversation, const NSdk::CanFrame& frame, NRuntime::Time time);
  void Acknowledge(Conversation& conversation, unsigned sequence);
  static bool TakeBlockFrame(Conversation& conversation, const NSdk::CanFrame& frame);
  static void KeepSegment(Conversation& conversation, const NSdk::CanFrame& frame);
  static void Append(SdoTransfer& transfer, const std::uint8_t* data, unsigned size);
  static void TakeBack(SdoTransfer& transfer, unsigned size);

  std::map<std::pair<std::uint32_t, unsigned>, Conversation> mConversations;
  std::vector<SdoTransfer> mEnded;
};

/// "object does not exist" for 06020000h (CiA 301, 7.2.4.3.17); empty for a code that it does not name.
std::string AbortText(std::uint32_t code);

/// One line: "SDO upload from node 5, 1008h sub 0, segmented: 18 bytes in 2.40 ms".
std::string InWords(const SdoTransfer& transfer);

}  // namespace NBench
