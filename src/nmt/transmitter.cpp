#include "nmt/transmitter.h"

#include "canopen/vocabulary.h"
#include "common/can_message.h"

namespace NNmt {

bool ZNMTTransmitter::SendCommand(const NmtRequest* request) {
  if (!mBlock || !request) return false;
  const auto output = mBlock->Output();
  if (!output) return true;
  NCommon::CanMessageRecord record;
  record.identifier = NCanopen::kNmtCobId;
  record.channel = mBlock->Channel();
  record.direction = NSdk::kCanTransmitted;
  record.data = {request->command, request->nodeId};
  output->TransmitMessage(NCommon::MakeCanMessage(std::move(record)).Get());
  return true;
}

bool ZNMTTransmitter::GetDatabaseNodes(std::vector<DatabaseNode>& nodes) {
  nodes.clear();
  if (!mBlock) return false;
  for (const NSdo::DatabaseNode& node : mBlock->DatabaseNodes()) nodes.push_back({node.nodeId, node.name});
  return true;
}

}  // namespace NNmt
