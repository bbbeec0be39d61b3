#include "scanner/frame_dispatch.h"

#include <optional>
#include <string>

#include "canopen/vocabulary.h"
#include "common/message_data.h"

namespace NScanner {
namespace {

// An NMT master answers with its priority and node-ID (CiA 302-2).
constexpr std::uint32_t kMasterAnswerCobId = 0x071;

// A node gave a sign of life.
struct Sighting {
  std::uint32_t nodeId = 0;
  std::uint32_t channel = 0;
  std::uint32_t state = NSdk::kNodeStateUnknown;
  std::optional<std::uint8_t> masterPriority;  // it announced itself as the NMT master
};

void Announce(ZCANopenNode& node, std::uint8_t priority) {
  node.SetMasterPriority("x", std::to_string(priority));
}

HRESULT AddSighted(ZCANopenModel& model, const Sighting& sighting) {
  model.BeginUpdate();
  NCom::ComPtr<ZCANopenNode> node;
  const HRESULT result = model.AddNode(sighting.nodeId, sighting.channel, node);
  if (SUCCEEDED(result)) {
    node->SetState(static_cast<std::uint8_t>(sighting.state));
    if (sighting.masterPriority) {
      Announce(*node, *sighting.masterPriority);
    } else {
      node->SetMasterPriority(" ", "?");
    }
  }
  model.EndUpdate(0, nullptr);
  return result;
}

HRESULT Note(ZCANopenModel& model, const Sighting& sighting) {
  if (sighting.nodeId > NCanopen::kLastNodeId) return S_OK;
  const auto node = model.FindNode(sighting.nodeId, sighting.channel);
  if (!node) return AddSighted(model, sighting);
  model.BeginUpdate();
  if (sighting.state != NSdk::kNodeStateUnknown) node->SetState(static_cast<std::uint8_t>(sighting.state));
  if (sighting.masterPriority) Announce(*node, *sighting.masterPriority);
  node->Touch();
  return model.EndUpdate(0, node->Identity());
}

HRESULT OnErrorControl(ZCANopenModel& model, Sighting sighting, NSdk::ICANMessage& message) {
  NCommon::MessageData data;
  if (NCommon::ReadData(message, data) && data.size != 0) {
    sighting.state = data.bytes[0] & NCanopen::kNodeStateMask;
  }
  return Note(model, sighting);
}

// An emergency is no sign of life: a node that was not heard before stays unknown.
HRESULT OnEmergency(ZCANopenModel& model, const Sighting& sighting, NSdk::ICANMessage& message) {
  constexpr std::uint32_t kCodeAndRegister = 3;
  const auto node = model.FindNode(sighting.nodeId, sighting.channel);
  if (!node) return S_OK;
  NCommon::MessageData data;
  if (!NCommon::ReadData(message, data) || data.size < kCodeAndRegister) return S_OK;
  node->SetErrorRegister(data.Word(0), data.bytes[2]);
  return S_OK;
}

HRESULT OnMasterAnswer(ZCANopenModel& model, Sighting sighting, NSdk::ICANMessage& message) {
  constexpr std::uint32_t kPriorityAndNode = 2;
  NCommon::MessageData data;
  if (!NCommon::ReadData(message, data) || data.size < kPriorityAndNode) return S_OK;
  sighting.masterPriority = data.bytes[0];
  sighting.nodeId = data.bytes[1];
  return Note(model, sighting);
}

// The node-ID when the identifier is one of the 127 that a service of the pre-defined connection set has.
std::optional<std::uint32_t> NodeOf(std::uint32_t identifier, std::uint32_t (*cobId)(std::uint32_t)) {
  const std::uint32_t nodeId = identifier - cobId(0);
  return NCanopen::IsNodeId(nodeId) ? std::optional(nodeId) : std::nullopt;
}

}  // namespace

HRESULT DispatchFrame(ZCANopenModel& model, NSdk::ICANopenSDManager* manager, NSdk::ICANMessage& message) {
  std::uint32_t remote = 0;
  std::uint32_t identifier = 0;
  Sighting sighting;
  if (FAILED(message.GetRemote(&remote)) || FAILED(message.GetIdentifier(&identifier)) ||
      FAILED(message.GetChannel(&sighting.channel)) || remote) {
    return E_FAIL;
  }
  if (const auto errorControl = NodeOf(identifier, NCanopen::ErrorControlCobId)) {
    sighting.nodeId = *errorControl;
    return OnErrorControl(model, sighting, message);
  }
  if (const auto server = NodeOf(identifier, NCanopen::SdoResponseCobId)) {
    if (manager) manager->ProcessMessage(&message);
    sighting.nodeId = *server;
    return Note(model, sighting);
  }
  if (NodeOf(identifier, NCanopen::SdoRequestCobId)) {
    if (manager) manager->ProcessMessage(&message);
    return S_OK;
  }
  if (const auto emergency = NodeOf(identifier, NCanopen::EmcyCobId)) {
    sighting.nodeId = *emergency;
    return OnEmergency(model, sighting, message);
  }
  if (identifier == kMasterAnswerCobId) return OnMasterAnswer(model, sighting, message);
  if (identifier == NCanopen::kNmtCobId) model.MarkMasterUnknown();
  return S_OK;
}

}  // namespace NScanner
