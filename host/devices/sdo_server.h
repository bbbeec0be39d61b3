#pragma once
// SDO server (CiA 301, 7.2.4): expedited, segmented and block transfer in both directions, one transfer at a
// time.

#include "host/devices/delayed_sender.h"
#include "host/devices/misbehaviour.h"
#include "host/devices/sdo_frames.h"

namespace NDevices {

/// The objects that a server gives access to. Refusals are what the client gets to hear.
class ObjectAccess {
 public:
  virtual ~ObjectAccess() = default;
  /// Puts the value into `value`, whatever was there.
  virtual AbortCode Read(ObjectAddress address, Bytes& value) = 0;
  /// May a value of this size, or of one that is not known yet, be written? `limit`: the bytes that may come.
  virtual AbortCode PrepareWrite(ObjectAddress address, std::optional<std::uint32_t> size,
                                 std::uint32_t& limit) = 0;
  virtual AbortCode Write(ObjectAddress address, BytesView value, Time now) = 0;
};

struct SdoServerOptions {
  std::uint8_t blockSize = kMaxBlockSize;  ///< segments per sub-block of a download, 1..127
  Time timeout = std::chrono::seconds(3);  ///< how long a client may keep a transfer waiting
};

class SdoServer {
 public:
  /// Objects, sender and misbehaviour are looked at whenever frames come; the latter may change between them.
  SdoServer(ObjectAccess& objects, DelayedSender& bus, const Misbehaviour& faults, SdoServerOptions options)
      : mObjects(objects), mBus(bus), mFaults(faults), mOptions(options) {}

  /// COB-IDs of requests and answers, as 1200h has them; frames are ignored while one is not valid.
  void Configure(std::uint32_t requestCobId, std::uint32_t answerCobId);
  /// Drops a transfer without a word.
  void Reset() { Finish(); }

  /// Frames of others, remote frames and frames that are not of eight bytes are ignored. A new request ends
  /// the transfer before it: the client has begun anew.
  void OnFrame(const NSdk::CanFrame& frame, Time now);

  Time NextDeadline() const { return mDeadline; }
  /// Aborts a transfer that its client has left.
  void OnDeadline(Time now);

 private:
  enum class State : std::uint8_t {
    Idle,
    SegmentedUpload,
    SegmentedDownload,
    BlockUploadStarting,     // answered; the client has to start it
    BlockUploadSending,      // a sub-block is out
    BlockUploadEnding,       // the end is out
    BlockDownloadReceiving,  // every frame is a segment
    BlockDownloadEnding,     // all acknowledged; the client has to say the end
  };
  using Handler = void (SdoServer::*)(const NSdk::CanFrame& frame);
  static const Handler kHandlers[kSdoCommandCount];

  void OnDownloadRequest(const NSdk::CanFrame& frame);
  void OnDownloadSegment(const NSdk::CanFrame& frame);
  void OnUploadRequest(const NSdk::CanFrame& frame);
  void OnUploadSegmentRequest(const NSdk::CanFrame& frame);
  void OnAbort(const NSdk::CanFrame& frame);
  void OnUnknown(const NSdk::CanFrame& frame);
  void OnBlockDownloadRequest(const NSdk::CanFrame& frame);
  void OnBlockDownloadSegment(const NSdk::CanFrame& frame);
  void OnBlockDownloadEnd(const NSdk::CanFrame& frame);
  void OnBlockUploadRequest(const NSdk::CanFrame& frame);
  void OnBlockUploadStart(const NSdk::CanFrame& frame);
  void OnBlockUploadAcknowledge(const NSdk::CanFrame& frame);
  void OnBlockUploadEnd(const NSdk::CanFrame& frame);

  bool Begin(const NSdk::CanFrame& frame);
  void DownloadAtOnce(const DownloadRequest& request, std::uint32_t limit);
  void UploadPlain();
  void AcknowledgeSubBlock();
  void SendSubBlock();
  void SendBlockSegment();
  void SendBlockEnd();
  AbortCode Store();

  bool CountSegment();
  bool IsFaultySegment() const { return mSegment == mFaults.segment; }
  std::uint8_t NextBlockSize();

  void Enter(State state);
  void Answer(const NSdk::CanFrame& frame);
  void Fail(AbortCode code);
  void Finish();

  ObjectAccess& mObjects;
  DelayedSender& mBus;
  const Misbehaviour& mFaults;
  SdoServerOptions mOptions;
  std::uint32_t mRequestCobId = 0x80000000;
  std::uint32_t mAnswerCobId = 0x80000000;

  Time mNow{};  // of the event that is handled
  Time mDeadline = kNever;
  State mState = State::Idle;
  ObjectAddress mAddress;  // of the transfer
  Bytes mData;             // upload: the value as it was at the request; download: what has come
  std::optional<std::uint32_t> mAnnounced;  // size of a download, if the client gave one
  std::uint32_t mLimit = 0;                 // bytes that a download may have
  std::size_t mPosition = 0;                // upload: bytes that are sent; in a block: acknowledged
  bool mToggle = false;
  bool mCrc = false;            // the client has a CRC too
  bool mLastSeen = false;       // the last segment of a block transfer is among those of mSequence
  std::uint8_t mBlockSize = 0;  // of the sub-block
  std::uint8_t mSequence = 0;   // last segment of the sub-block that was sent, or received in order
  std::uint32_t mSegment = 0;   // of the transfer, from 1, repeated ones included
  std::uint32_t mSubBlock = 0;  // sub-blocks asked for in this transfer
  bool mFaultInSubBlock = false;
};

}  // namespace NDevices
