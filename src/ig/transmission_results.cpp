#include "ig/transmission_results.h"

#include <algorithm>

#include "resources/print.h"
#include "resources/resource_ids.h"
#include "resources/text.h"
#include "sdo/engine/abort_codes.h"

namespace NIg {
namespace {

using NResources::LoadText;

std::wstring AbortText(std::uint32_t code) {
  if (code == NSdo::kSdoAbortCodes[NSdo::kAbortTimeout]) return LoadText(IDS_IG_RESULT_TIMEOUT);
  const auto* const found = std::ranges::find(NSdo::kSdoAbortCodes, code);
  const auto position = static_cast<int>(found - std::begin(NSdo::kSdoAbortCodes));
  const bool known = position > 0 && position < NSdo::kSdoAbortCodeCount;
  const std::wstring words = LoadText(known ? IDS_SDO_ABORT_FIRST + position : IDS_SDO_ABORT_UNKNOWN);
  return NResources::Print(LoadText(IDS_IG_RESULT_ABORTED), code, words);
}

std::wstring TransferText(const SdoTransferResult& transfer) {
  switch (transfer.result) {
    case NSdk::kTransferDone:
      return NResources::Print(LoadText(IDS_IG_RESULT_DONE), transfer.bytes);
    case NSdk::kTransferAborted:
      return AbortText(transfer.abortCode);
    case NSdk::kTransferRefused:
      return LoadText(IDS_IG_RESULT_REFUSED);
    case NSdk::kTransferDropped:
      return LoadText(IDS_IG_RESULT_DROPPED);
  }
  return {};
}

}  // namespace

TransmissionResults::Result& TransmissionResults::At(const ItemPlace& place) {
  auto& results = mResults[place.list];
  if (place.position >= results.size()) results.resize(place.position + 1);
  return results[place.position];
}

const TransmissionResults::Result* TransmissionResults::Find(const ItemPlace& place) const {
  const auto& results = mResults[place.list];
  return place.position < results.size() ? &results[place.position] : nullptr;
}

void TransmissionResults::Sent(const ItemPlace& place, bool isTransfer) {
  At(place) = {isTransfer ? State::Transferring : State::Sent, {}};
  if (place.list == NSdk::kSequenceList) mCurrent = place.position;
}

void TransmissionResults::Failed(const ItemPlace& place) { At(place) = {State::Failed, {}}; }

void TransmissionResults::Ended(const ItemPlace& place, const SdoTransferResult& result) {
  At(place) = {State::Ended, result};
}

void TransmissionResults::Clear(NSdk::GeneratorList list) {
  mResults[list].clear();
  if (list == NSdk::kSequenceList) mCurrent.reset();
}

void TransmissionResults::ClearRow(const ItemPlace& place) {
  if (Find(place)) At(place) = {};
}

std::wstring TransmissionResults::Text(const ItemPlace& place) const {
  const Result* const result = Find(place);
  if (!result) return {};
  switch (result->state) {
    case State::None:
      return {};
    case State::Sent:
      return LoadText(IDS_IG_RESULT_SENT);
    case State::Transferring:
      return LoadText(IDS_IG_RESULT_TRANSFERRING);
    case State::Failed:
      return LoadText(IDS_IG_RESULT_FAILED);
    case State::Ended:
      return TransferText(result->transfer);
  }
  return {};
}

ResultImage TransmissionResults::Image(const ItemPlace& place) const {
  if (place.list == NSdk::kSequenceList && mCurrent == place.position) return ResultImage::Sending;
  const Result* const result = Find(place);
  if (!result) return ResultImage::None;
  switch (result->state) {
    case State::None:
      return ResultImage::None;
    case State::Sent:
      return ResultImage::Good;
    case State::Transferring:
      return ResultImage::Sending;
    case State::Failed:
      return ResultImage::Bad;
    case State::Ended:
      return result->transfer.result == NSdk::kTransferDone ? ResultImage::Good : ResultImage::Bad;
  }
  return ResultImage::None;
}

}  // namespace NIg
