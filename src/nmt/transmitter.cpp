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

}  // namespace NNmt
