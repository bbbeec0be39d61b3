#pragma once
// SDO transfers of other devices, followed frame by frame. Nothing is sent and nothing is checked: what a
// client and a server make of their transfer is their business.

#include <cstdint>
#include <vector>

#include "com/com_ptr.h"
#include "common/message_data.h"
#include "sdk/sdo_observation.h"

namespace NSdo {

enum class ConnectionResult : std::uint32_t {
  Running = 0,
  Finished = 1,
  Failed = 2,  ///< the server answered with something else, an abort among them
  TimedOut = 3,
};

/// One transfer that is followed.
class ZSDOConnection {
 public:
  ZSDOConnection(std::uint32_t requestCobId, std::uint32_t responseCobId, std::uint32_t channel,
                 NCom::ComPtr<NSdk::ICANopenDataObject> dataObject)
      : mDataObject(std::move(dataObject)),
        mCobIdRx(responseCobId),
        mCobIdTx(requestCobId),
        mChannel(channel) {}
  ZSDOConnection(const ZSDOConnection&) = delete;
  ZSDOConnection& operator=(const ZSDOConnection&) = delete;
  virtual ~ZSDOConnection() = default;

  /// An SdoRequestKind.
  virtual std::uint32_t GetKind() const = 0;
  /// Whether the frame belongs to this transfer. `sizeHint` is the number of expedited bytes of an answer
  /// that tells it.
  virtual bool OnFrame(std::uint32_t cobId, std::uint32_t channel, std::uint32_t sizeHint,
                       const NCommon::MessageData& data) = 0;
  virtual void Tick(std::uint32_t elapsed_ms) = 0;

  virtual ConnectionResult GetResult() const { return mResult; }
  virtual std::uint32_t GetCobIdRx() const { return mCobIdRx; }
  virtual std::uint32_t GetCobIdTx() const { return mCobIdTx; }
  virtual std::uint32_t GetChannel() const { return mChannel; }
  const NCom::ComPtr<NSdk::ICANopenDataObject>& DataObject() const { return mDataObject; }

 protected:
  NCom::ComPtr<NSdk::ICANopenDataObject> mDataObject;
  ConnectionResult mResult = ConnectionResult::Running;
  std::uint32_t mCobIdRx;  ///< server to client
  std::uint32_t mCobIdTx;  ///< client to server
  std::uint32_t mChannel;
};

/// An expedited or segmented upload (CiA 301, 7.2.4.3.5 and 7.2.4.3.6). Segments are stored in the order in
/// which they come, whatever their toggle bits.
class ZSDOConnUpload final : public ZSDOConnection {
 public:
  ZSDOConnUpload(std::uint32_t requestCobId, std::uint32_t responseCobId, std::uint16_t index,
                 std::uint8_t subindex, std::uint32_t channel);

  std::uint32_t GetKind() const override { return NSdk::kSdoUploadRequest; }
  bool OnFrame(std::uint32_t cobId, std::uint32_t channel, std::uint32_t sizeHint,
               const NCommon::MessageData& data) override;
  void Tick(std::uint32_t elapsed_ms) override;

 private:
  enum class State : std::uint32_t { AwaitsRequest = 1, AwaitsResponse = 2, LastSegmentReceived = 3 };

  void OnResponse(std::uint32_t sizeHint, const NCommon::MessageData& data);
  void OnInitiateResponse(std::uint32_t sizeHint, const NCommon::MessageData& data);
  void OnSegment(const NCommon::MessageData& data);
  void Store(const std::uint8_t* bytes, std::uint32_t count);
  void Finish();

  State mState = State::AwaitsResponse;
  std::uint32_t mOffset = 0;
  std::uint32_t mTimeLeft_ms;
  bool mSizeTold = false;
  std::vector<std::uint8_t> mCollected;  // while the server has not told the size
};

}  // namespace NSdo
