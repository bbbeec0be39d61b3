// Dispatch and end of transfers; expedited and segmented ones (CiA 301, 7.2.4.2.2 to 7.2.4.2.7).

#include "host/devices/sdo_server.h"

#include <algorithm>

#include "host/devices/cob_id.h"

namespace NDevices {

using NSdk::CanFrame;

// In the order of SdoCommand.
const SdoServer::Handler SdoServer::kHandlers[kSdoCommandCount] = {
    &SdoServer::OnDownloadSegment,
    &SdoServer::OnDownloadRequest,
    &SdoServer::OnUploadRequest,
    &SdoServer::OnUploadSegmentRequest,
    &SdoServer::OnAbort,
    &SdoServer::OnBlockUploadRequest,
    &SdoServer::OnBlockUploadEnd,
    &SdoServer::OnBlockUploadAcknowledge,
    &SdoServer::OnBlockUploadStart,
    &SdoServer::OnBlockDownloadRequest,
    &SdoServer::OnBlockDownloadEnd,
    &SdoServer::OnUnknown,
};

void SdoServer::Configure(std::uint32_t requestCobId, std::uint32_t answerCobId) {
  mRequestCobId = requestCobId;
  mAnswerCobId = answerCobId;
}

void SdoServer::OnFrame(const CanFrame& frame, Time now) {
  if (mFaults.silent || !IsValid(mAnswerCobId) || !Matches(frame, mRequestCobId)) return;
  if (IsRemote(frame) || LengthOf(frame) != kSdoFrameSize) return;
  mNow = now;
  if (mState == State::BlockDownloadReceiving && !IsAbortWithinBlock(frame)) {
    return OnBlockDownloadSegment(frame);
  }
  (this->*kHandlers[static_cast<std::size_t>(CommandOf(frame))])(frame);
}

void SdoServer::OnDeadline(Time now) {
  if (mDeadline > now) return;
  mNow = now;
  Fail(AbortCode::TimedOut);
}

// What every request for a transfer does first. False: it ended right there.
bool SdoServer::Begin(const CanFrame& frame) {
  Finish();
  mAddress = AddressIn(frame);
  if (mFaults.abort == AbortCode::None || mFaults.abortAtSegment != 0) return true;
  Fail(mFaults.abort);
  return false;
}

void SdoServer::Enter(State state) {
  mState = state;
  mDeadline = mNow + mFaults.answerDelay + mOptions.timeout;
}

void SdoServer::Answer(const CanFrame& frame) { mBus.Send(frame, mFaults.answerDelay, mNow); }

void SdoServer::Fail(AbortCode code) {
  Answer(AbortAnswer(mAnswerCobId, mAddress, code));
  Finish();
}

void SdoServer::Finish() {
  mState = State::Idle;
  mDeadline = kNever;
  mAddress = {};
  mData.clear();  // its memory stays for the next transfer
  mAnnounced.reset();
  mLimit = 0;
  mPosition = 0;
  mToggle = mCrc = mLastSeen = mFaultInSubBlock = false;
  mBlockSize = mSequence = 0;
  mSegment = mSubBlock = 0;
}

// One more segment of the transfer is sent or has come. False: the transfer was told to end here.
bool SdoServer::CountSegment() {
  ++mSegment;
  if (IsFaultySegment()) mFaultInSubBlock = true;
  if (mFaults.abort == AbortCode::None || mSegment != mFaults.abortAtSegment) return true;
  Fail(mFaults.abort);
  return false;
}

void SdoServer::OnAbort(const CanFrame&) { Finish(); }

void SdoServer::OnUnknown(const CanFrame&) { Fail(AbortCode::UnknownCommand); }

void SdoServer::OnDownloadRequest(const CanFrame& frame) {
  if (!Begin(frame)) return;
  const DownloadRequest request = ReadDownloadRequest(frame);
  std::uint32_t limit = 0;
  const AbortCode code = mObjects.PrepareWrite(mAddress, request.size, limit);
  if (code != AbortCode::None) return Fail(code);
  if (request.expedited) return DownloadAtOnce(request, limit);
  mAnnounced = request.size;
  mLimit = request.size.value_or(limit);
  Enter(State::SegmentedDownload);
  Answer(DownloadAnswer(mAnswerCobId, mAddress));
}

// Without a size the object takes as much of the four bytes as it has.
void SdoServer::DownloadAtOnce(const DownloadRequest& request, std::uint32_t limit) {
  const std::uint32_t size = request.size.value_or(std::min(limit, kExpeditedBytes));
  const AbortCode code = mObjects.Write(mAddress, request.data.first(size), mNow);
  if (code != AbortCode::None) return Fail(code);
  Answer(DownloadAnswer(mAnswerCobId, mAddress));
  Finish();
}

void SdoServer::OnDownloadSegment(const CanFrame& frame) {
  if (mState != State::SegmentedDownload) return Fail(AbortCode::UnknownCommand);
  if (ToggleIn(frame) != mToggle) return Fail(AbortCode::ToggleBit);
  const BytesView data = SegmentData(frame);
  if (data.size() > mLimit - mData.size()) return Fail(AbortCode::LengthTooHigh);
  if (!CountSegment()) return;
  if (mFaults.dropSegment && IsFaultySegment()) return;
  mData.insert(mData.end(), data.begin(), data.end());
  const CanFrame answer =
      DownloadSegmentAnswer(mAnswerCobId, mToggle != (mFaults.wrongToggle && IsFaultySegment()));
  mToggle = !mToggle;
  if (!IsLastSegment(frame)) {
    Enter(State::SegmentedDownload);
    return Answer(answer);
  }
  const AbortCode code = Store();
  if (code != AbortCode::None) return Fail(code);
  Answer(answer);
  Finish();
}

// The download is complete. More than announced never gets here.
AbortCode SdoServer::Store() {
  if (mAnnounced && mData.size() < *mAnnounced) return AbortCode::LengthTooLow;
  return mObjects.Write(mAddress, mData, mNow);
}

void SdoServer::OnUploadRequest(const CanFrame& frame) {
  if (!Begin(frame)) return;
  const AbortCode code = mObjects.Read(mAddress, mData);
  if (code != AbortCode::None) return Fail(code);
  UploadPlain();
}

void SdoServer::UploadPlain() {
  Answer(UploadAnswer(mAnswerCobId, mAddress, mData));
  if (!mData.empty() && mData.size() <= kExpeditedBytes) return Finish();
  Enter(State::SegmentedUpload);
}

void SdoServer::OnUploadSegmentRequest(const CanFrame& frame) {
  if (mState != State::SegmentedUpload) return Fail(AbortCode::UnknownCommand);
  if (ToggleIn(frame) != mToggle) return Fail(AbortCode::ToggleBit);
  if (!CountSegment()) return;
  const std::size_t size = std::min(kSegmentBytes, mData.size() - mPosition);
  const BytesView data = BytesView(mData).subspan(mPosition, size);
  const bool last = mPosition + size == mData.size();
  const bool toggle = mToggle != (mFaults.wrongToggle && IsFaultySegment());
  if (!mFaults.dropSegment || !IsFaultySegment()) {
    Answer(UploadSegmentAnswer(mAnswerCobId, toggle, data, last));
  }
  if (last) return Finish();
  mPosition += size;
  mToggle = !mToggle;
  Enter(State::SegmentedUpload);
}

}  // namespace NDevices
