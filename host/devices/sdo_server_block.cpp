// Block transfer (CiA 301, 7.2.4.2.8 to 7.2.4.2.14).

#include <algorithm>

#include "host/devices/crc.h"
#include "host/devices/sdo_server.h"

namespace NDevices {

using NSdk::CanFrame;

// Download ----------------------------------------------------------------------------------------------

void SdoServer::OnBlockDownloadRequest(const CanFrame& frame) {
  if (!Begin(frame)) return;
  const BlockDownloadRequest request = ReadBlockDownloadRequest(frame);
  std::uint32_t limit = 0;
  const AbortCode code = mObjects.PrepareWrite(mAddress, request.size, limit);
  if (code != AbortCode::None) return Fail(code);
  mAnnounced = request.size;
  mLimit = request.size.value_or(limit);
  mCrc = request.crc;
  mBlockSize = NextBlockSize();
  Enter(State::BlockDownloadReceiving);
  Answer(BlockDownloadAnswer(mAnswerCobId, mAddress, mBlockSize));
}

std::uint8_t SdoServer::NextBlockSize() {
  const std::uint8_t size = mOptions.blockSize;
  if (!mFaults.varyBlockSize || mSubBlock++ % 2 == 0) return size;
  return size > 1 ? static_cast<std::uint8_t>(size / 2) : std::uint8_t{2};
}

// Every segment counts seven bytes until the end says how many of the last one are data. Behind a gap nothing
// is taken any more; the acknowledge at the end of the sub-block says from where to go on.
void SdoServer::OnBlockDownloadSegment(const CanFrame& frame) {
  const BlockSegment segment = ReadBlockSegment(frame);
  if (segment.sequence == 0 || segment.sequence > mBlockSize) return Fail(AbortCode::SequenceNumber);
  if (!CountSegment()) return;
  if (mFaults.dropSegment && IsFaultySegment()) return;
  if (segment.sequence == mSequence + 1) {
    if (mData.size() >= mLimit && !mData.empty()) return Fail(AbortCode::LengthTooHigh);
    mData.insert(mData.end(), segment.data.begin(), segment.data.end());
    mSequence = segment.sequence;
    mLastSeen = segment.last;
  }
  Enter(State::BlockDownloadReceiving);
  if (segment.last || segment.sequence == mBlockSize) AcknowledgeSubBlock();
}

void SdoServer::AcknowledgeSubBlock() {
  const bool wrong = mFaults.wrongSequence && mFaultInSubBlock;
  const auto sequence = static_cast<std::uint8_t>(mSequence + (wrong ? 1 : 0));
  mBlockSize = NextBlockSize();
  mSequence = 0;
  mFaultInSubBlock = false;
  if (mLastSeen) Enter(State::BlockDownloadEnding);
  Answer(BlockDownloadAcknowledge(mAnswerCobId, {sequence, mBlockSize}));
}

void SdoServer::OnBlockDownloadEnd(const CanFrame& frame) {
  if (mState != State::BlockDownloadEnding) return Fail(AbortCode::UnknownCommand);
  const BlockEnd end = ReadBlockEnd(frame);
  mData.resize(mData.size() - end.unused);  // there is a whole segment at least
  if (mData.size() > mLimit) return Fail(AbortCode::LengthTooHigh);
  if (mFaults.badCrc || (mCrc && BlockCrc(mData) != end.crc)) return Fail(AbortCode::Crc);
  const AbortCode code = Store();
  if (code != AbortCode::None) return Fail(code);
  Answer(BlockDownloadEndAnswer(mAnswerCobId));
  Finish();
}

// Upload ------------------------------------------------------------------------------------------------

void SdoServer::OnBlockUploadRequest(const CanFrame& frame) {
  if (!Begin(frame)) return;
  const BlockUploadRequest request = ReadBlockUploadRequest(frame);
  if (request.blockSize == 0 || request.blockSize > kMaxBlockSize) return Fail(AbortCode::BlockSize);
  const AbortCode code = mObjects.Read(mAddress, mData);
  if (code != AbortCode::None) return Fail(code);
  // For so little the client takes a plain upload too.
  if (request.switchThreshold != 0 && mData.size() <= request.switchThreshold) return UploadPlain();
  mCrc = request.crc;
  mBlockSize = request.blockSize;
  Enter(State::BlockUploadStarting);
  Answer(BlockUploadAnswer(mAnswerCobId, mAddress, static_cast<std::uint32_t>(mData.size())));
}

void SdoServer::OnBlockUploadStart(const CanFrame&) {
  if (mState != State::BlockUploadStarting) return Fail(AbortCode::UnknownCommand);
  SendSubBlock();
}

void SdoServer::SendSubBlock() {
  mSequence = 0;
  mLastSeen = false;
  Enter(State::BlockUploadSending);
  while (mSequence < mBlockSize && !mLastSeen) {
    if (!CountSegment()) return;
    SendBlockSegment();
  }
}

// A value without bytes is one segment without data.
void SdoServer::SendBlockSegment() {
  const std::size_t place = std::min(mPosition + mSequence * kSegmentBytes, mData.size());
  const std::size_t size = std::min(kSegmentBytes, mData.size() - place);
  ++mSequence;
  mLastSeen = place + size == mData.size();
  if (mFaults.dropSegment && IsFaultySegment()) return;
  const bool wrong = mFaults.wrongSequence && IsFaultySegment();
  const auto number = static_cast<std::uint8_t>(wrong ? mSequence % kMaxBlockSize + 1 : mSequence);
  Answer(BlockUploadSegment(mAnswerCobId, number, BytesView(mData).subspan(place, size), mLastSeen));
}

void SdoServer::OnBlockUploadAcknowledge(const CanFrame& frame) {
  if (mState != State::BlockUploadSending) return Fail(AbortCode::UnknownCommand);
  const BlockAcknowledge acknowledge = ReadBlockAcknowledge(frame);
  if (acknowledge.sequence > mSequence) return Fail(AbortCode::SequenceNumber);
  if (mLastSeen && acknowledge.sequence == mSequence) return SendBlockEnd();
  if (acknowledge.blockSize == 0 || acknowledge.blockSize > kMaxBlockSize) return Fail(AbortCode::BlockSize);
  mPosition += acknowledge.sequence * kSegmentBytes;
  mBlockSize = acknowledge.blockSize;
  SendSubBlock();
}

void SdoServer::SendBlockEnd() {
  const std::size_t inLast = mData.size() % kSegmentBytes;
  const std::size_t unused = mData.empty() || inLast != 0 ? kSegmentBytes - inLast : 0;
  std::uint16_t crc = mCrc ? BlockCrc(mData) : std::uint16_t{0};
  if (mFaults.badCrc) crc = static_cast<std::uint16_t>(~crc);
  Enter(State::BlockUploadEnding);
  Answer(BlockUploadEndAnswer(mAnswerCobId, {static_cast<std::uint8_t>(unused), crc}));
}

void SdoServer::OnBlockUploadEnd(const CanFrame&) {
  if (mState != State::BlockUploadEnding) return Fail(AbortCode::UnknownCommand);
  Finish();
}

}  // namespace NDevices
