#include "sdo/sd_manager.h"

#include <algorithm>

#include "canopen/vocabulary.h"
#include "com/entry.h"

namespace NSdo {
namespace {

constexpr unsigned kInitiateUploadRequest = 2;

bool IsRequest(std::uint32_t identifier) {
  return identifier >= NCanopen::SdoRequestCobId(NCanopen::kFirstNodeId) &&
         identifier <= NCanopen::SdoRequestCobId(NCanopen::kLastNodeId);
}

bool IsResponse(std::uint32_t identifier) {
  return identifier >= NCanopen::SdoResponseCobId(NCanopen::kFirstNodeId) &&
         identifier <= NCanopen::SdoResponseCobId(NCanopen::kLastNodeId);
}

// Bytes of an expedited value. One whose size is not indicated counts as empty.
std::uint32_t ExpeditedSize(const NCommon::MessageData& data) {
  constexpr unsigned kExpeditedWithSize = 3;
  const unsigned command = data.bytes[0];
  return (command & kExpeditedWithSize) == kExpeditedWithSize ? 4 - ((command >> 2) & 3) : 0;
}

}  // namespace

HRESULT ZCANopenSDManager::ProcessMessage(NSdk::ICANMessage* message) {
  return NCom::Entry([&]() -> HRESULT {
    if (!message) return E_POINTER;
    Frame frame;
    std::uint32_t remote = 0;
    if (FAILED(message->GetIdentifier(&frame.cobId)) || FAILED(message->GetChannel(&frame.channel)) ||
        FAILED(message->GetRemote(&remote))) {
      return E_FAIL;
    }
    if (remote) return S_OK;
    if (!NCommon::ReadData(*message, frame.data)) return E_FAIL;
    if (IsRequest(frame.cobId)) {
      OnRequest(frame);
    } else if (IsResponse(frame.cobId)) {
      Offer(frame, ExpeditedSize(frame.data));
    }
    return S_OK;
  });
}

void ZCANopenSDManager::OnRequest(const Frame& frame) {
  if (frame.data.bytes[0] >> 5 == kInitiateUploadRequest) {
    OnUploadRequest(frame);
  } else {
    Offer(frame, frame.data.size);
  }
}

// A client that starts anew has given up what it did before.
void ZCANopenSDManager::OnUploadRequest(const Frame& frame) {
  if (!IsWanted(frame)) return;
  std::erase_if(mConnections,
                [&](const auto& connection) { return connection->GetCobIdTx() == frame.cobId; });
  const std::uint32_t node = frame.cobId & NCanopen::kLastNodeId;
  mConnections.push_back(std::make_unique<ZSDOConnUpload>(
      frame.cobId, NCanopen::SdoResponseCobId(node), frame.data.Word(1), frame.data.bytes[3], frame.channel));
}

bool ZCANopenSDManager::IsWanted(const Frame& frame) {
  const auto delegate = mDelegate;
  if (!delegate) return false;
  const NSdk::SdoRequest request{frame.cobId, frame.data.Word(1), frame.data.bytes[3],
                                 ExpeditedSize(frame.data), NSdk::kSdoUploadRequest};
  std::uint32_t answer = 0;
  return SUCCEEDED(delegate->QueryUpload(&request, &answer)) && answer == 1;
}

void ZCANopenSDManager::Offer(const Frame& frame, std::uint32_t sizeHint) {
  const auto taker = std::find_if(mConnections.begin(), mConnections.end(), [&](const auto& connection) {
    return connection->OnFrame(frame.cobId, frame.channel, sizeHint, frame.data);
  });
  if (taker != mConnections.end() && (*taker)->GetResult() != ConnectionResult::Running) Settle(taker);
}

// The connection is off the list before the delegate hears of it, who may come back here.
void ZCANopenSDManager::Settle(Connections::iterator connection) {
  const std::unique_ptr<ZSDOConnection> ended = std::move(*connection);
  mConnections.erase(connection);
  const auto delegate = mDelegate;
  if (!delegate || ended->GetResult() != ConnectionResult::Finished) return;
  delegate->OnUploadComplete(ended->GetCobIdTx(), ended->GetChannel(), ended->DataObject().Get());
}

HRESULT ZCANopenSDManager::Reset() {
  return NCom::Entry([&] { mConnections.clear(); });
}

// Connections that end together leave one per tick.
HRESULT ZCANopenSDManager::Tick(std::uint32_t elapsed_ms) {
  return NCom::Entry([&] {
    for (const auto& connection : mConnections) connection->Tick(elapsed_ms);
    const auto ended = std::find_if(mConnections.begin(), mConnections.end(), [](const auto& connection) {
      return connection->GetResult() != ConnectionResult::Running;
    });
    if (ended != mConnections.end()) mConnections.erase(ended);
  });
}

HRESULT ZCANopenSDManager::SetDelegate(NSdk::ICANopenSDManagerDelegate* delegate) {
  return NCom::Entry([&] { mDelegate = delegate; });
}

}  // namespace NSdo
