#include "nmt/node_selection.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include "canopen/vocabulary.h"
#include "common/host_application.h"
#include "nmt/node_dialog.h"
#include "resources/resource_ids.h"
#include "resources/text.h"

namespace NNmt {

std::vector<DatabaseNode> SelectionRows(std::span<const DatabaseNode> databaseNodes) {
  std::vector<DatabaseNode> rows(databaseNodes.begin(), databaseNodes.end());
  const std::wstring unknown = NResources::LoadText(IDS_NMT_NOT_IN_DATABASE);
  for (std::uint32_t nodeId = NCanopen::kFirstNodeId; nodeId <= NCanopen::kLastNodeId; ++nodeId) {
    const bool named = std::any_of(databaseNodes.begin(), databaseNodes.end(),
                                   [&](const DatabaseNode& node) { return node.nodeId == nodeId; });
    if (!named) rows.push_back({nodeId, unknown});
  }
  return rows;
}

void SendToNodes(ZNMTTransmitter& transmitter, std::uint8_t command, std::span<const std::uint8_t> nodeIds) {
  constexpr auto kDelay = std::chrono::milliseconds(10);
  for (std::size_t position = 0; position < nodeIds.size(); ++position) {
    if (position != 0) std::this_thread::sleep_for(kDelay);
    const NmtRequest request{command, nodeIds[position]};
    transmitter.SendCommand(&request);
  }
}

namespace {

void AskHostForNodes(NSdk::IUserDialogs& dialogs, ZNMTTransmitter& transmitter, std::uint8_t command) {
  std::vector<DatabaseNode> databaseNodes;
  transmitter.GetDatabaseNodes(databaseNodes);
  std::vector<std::uint8_t> candidates;
  for (const DatabaseNode& row : SelectionRows(databaseNodes)) {
    if (NCanopen::IsNodeId(row.nodeId)) candidates.push_back(static_cast<std::uint8_t>(row.nodeId));
  }
  std::vector<std::uint8_t> chosen(candidates.size());
  const std::wstring title = NResources::LoadText(IDS_NMT_SELECTION_TITLE);
  const auto count = static_cast<std::uint32_t>(candidates.size());
  if (dialogs.SelectNodes(title.c_str(), candidates.data(), count, chosen.data()) != S_OK) return;
  std::vector<std::uint8_t> picked;
  for (std::size_t position = 0; position < candidates.size(); ++position) {
    if (chosen[position]) picked.push_back(candidates[position]);
  }
  SendToNodes(transmitter, command, picked);
}

}  // namespace

void AskForNodes(ZNMTTransmitter& transmitter, std::uint8_t command) {
  if (const auto dialogs = NCommon::HostService<NSdk::IUserDialogs>()) {
    AskHostForNodes(*dialogs, transmitter, command);
  } else {
    ShowNodeDialog(transmitter, command);
  }
}

}  // namespace NNmt
