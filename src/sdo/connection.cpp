#include "sdo/connection.h"

#include "sdo/data_object.h"

namespace NSdo {
namespace {

constexpr std::uint32_t kPatience_ms = 500;

// What anybody wants to know of a device in passing is far smaller; what a hostile server announces is not.
constexpr std::uint32_t kLargestValue = 1 << 20;

// Command specifiers (CiA 301, 7.2.4.3.5 and 7.2.4.3.6): the upper three bits of byte 0.
constexpr unsigned kInitiateUploadResponse = 2;
constexpr unsigned kUploadSegmentRequest = 3;
constexpr std::uint8_t kEndOfSegmentResponses = 0x20;  // the specifier of those is 0

constexpr std::uint8_t kExpedited = 0x02;
constexpr std::uint8_t kSizeBits = 0x03;  // expedited, size indicated
constexpr std::uint8_t kOnlySizeTold = 0x01;
constexpr std::uint8_t kLastSegment = 0x01;

unsigned Specifier(const NCommon::MessageData& data) { return data.bytes[0] >> 5; }

}  // namespace

ZSDOConnUpload::ZSDOConnUpload(std::uint32_t requestCobId, std::uint32_t responseCobId, std::uint16_t index,
                               std::uint8_t subindex, std::uint32_t channel)
    : ZSDOConnection(requestCobId, responseCobId, channel, CreateDataObject(index, subindex, 0)),
      mTimeLeft_ms(kPatience_ms) {}

bool ZSDOConnUpload::OnFrame(std::uint32_t cobId, std::uint32_t channel, std::uint32_t sizeHint,
                             const NCommon::MessageData& data) {
  if (channel != mChannel) return false;
  if (mState == State::AwaitsResponse && cobId == mCobIdRx) {
    mTimeLeft_ms = kPatience_ms;
    OnResponse(sizeHint, data);
    return true;
  }
  if (mState == State::AwaitsRequest && cobId == mCobIdTx) {
    mTimeLeft_ms = kPatience_ms;
    if (Specifier(data) == kUploadSegmentRequest) mState = State::AwaitsResponse;
    return true;
  }
  return false;
}

void ZSDOConnUpload::OnResponse(std::uint32_t sizeHint, const NCommon::MessageData& data) {
  if (Specifier(data) == kInitiateUploadResponse) {
    OnInitiateResponse(sizeHint, data);
  } else if (data.bytes[0] < kEndOfSegmentResponses) {
    OnSegment(data);
  } else {
    mResult = ConnectionResult::Failed;
  }
}

void ZSDOConnUpload::OnInitiateResponse(std::uint32_t sizeHint, const NCommon::MessageData& data) {
  constexpr std::size_t kValue = 4;
  if (data.bytes[0] & kExpedited) {
    mDataObject->SetValue(sizeHint, &data.bytes[kValue]);
    mResult = ConnectionResult::Finished;
    return;
  }
  mState = State::AwaitsRequest;
  if ((data.bytes[0] & kSizeBits) != kOnlySizeTold) return;
  const std::uint32_t size = data.Number(kValue);
  mSizeTold = true;
  if (size > kLargestValue || FAILED(mDataObject->SetValue(size, nullptr)))
    mResult = ConnectionResult::Failed;
}

void ZSDOConnUpload::OnSegment(const NCommon::MessageData& data) {
  constexpr std::uint32_t kSegmentSize = 7;
  const std::uint32_t count = kSegmentSize - ((data.bytes[0] >> 1) & 7u);
  Store(&data.bytes[1], count);
  if (mResult != ConnectionResult::Running) return;
  if ((data.bytes[0] & kLastSegment) == 0) {
    mState = State::AwaitsRequest;
  } else {
    mState = State::LastSegmentReceived;
    Finish();
  }
}

// A told size holds: the object refuses what comes beyond it.
void ZSDOConnUpload::Store(const std::uint8_t* bytes, std::uint32_t count) {
  if (mSizeTold) {
    mDataObject->WriteBytes(mOffset, count, bytes);
  } else if (mCollected.size() + count > kLargestValue) {
    mResult = ConnectionResult::Failed;
  } else {
    mCollected.insert(mCollected.end(), bytes, bytes + count);
  }
  mOffset += count;
}

void ZSDOConnUpload::Finish() {
  mResult = ConnectionResult::Finished;
  if (mSizeTold || mCollected.empty()) return;
  const auto size = static_cast<std::uint32_t>(mCollected.size());
  if (FAILED(mDataObject->SetValue(size, mCollected.data()))) mResult = ConnectionResult::Failed;
}

void ZSDOConnUpload::Tick(std::uint32_t elapsed_ms) {
  if (mTimeLeft_ms <= elapsed_ms) {
    mResult = ConnectionResult::TimedOut;
  } else {
    mTimeLeft_ms -= elapsed_ms;
  }
}

}  // namespace NSdo
