#include "host/devices/fault_option.h"

#include <algorithm>

namespace NDevices {
namespace {

constexpr std::uint32_t kAny = 0xFFFFFFFF;
constexpr std::uint32_t kLongestDelay_ms = 3600000;

template <bool Misbehaviour::*kMember>
constexpr FaultOption Flag(std::string_view name, std::string_view meaning) {
  return {name,
          "",
          0,
          1,
          [](Misbehaviour& faults, std::uint32_t value) { faults.*kMember = value != 0; },
          [](const Misbehaviour& faults) -> std::uint32_t { return faults.*kMember ? 1 : 0; },
          meaning};
}

constexpr FaultOption kFaultOptions[] = {
    {"late", "MS", 0, kLongestDelay_ms,
     [](Misbehaviour& faults, std::uint32_t value) { faults.answerDelay = std::chrono::milliseconds(value); },
     [](const Misbehaviour& faults) {
       return static_cast<std::uint32_t>(faults.answerDelay / std::chrono::milliseconds(1));
     },
     "every answer to an SDO comes MS milliseconds late"},
    Flag<&Misbehaviour::silent>("silent", "SDO requests are not answered"),
    {"abort", "CODE", 1, kAny,
     [](Misbehaviour& faults, std::uint32_t value) { faults.abort = AbortCode{value}; },
     [](const Misbehaviour& faults) { return static_cast<std::uint32_t>(faults.abort); },
     "every transfer is aborted with CODE (0x06020000)"},
    {"abort-at", "N", 1, kAny,
     [](Misbehaviour& faults, std::uint32_t value) { faults.abortAtSegment = value; },
     [](const Misbehaviour& faults) { return faults.abortAtSegment; },
     "... at its segment N, not in answer to the request"},
    Flag<&Misbehaviour::badCrc>("bad-crc", "CRCs of block transfers are wrong, or found wrong"),
    Flag<&Misbehaviour::varyBlockSize>("vary-block-size",
                                       "every other sub-block of a download is half as long"),
    Flag<&Misbehaviour::wrongToggle>("wrong-toggle", "a segment, or its answer, has the other toggle bit"),
    Flag<&Misbehaviour::wrongSequence>("wrong-sequence",
                                       "a block's segment, or its answer, has a wrong number"),
    Flag<&Misbehaviour::dropSegment>("drop-segment", "a segment is not sent, or not taken"),
    {"segment", "N", 1, kAny, [](Misbehaviour& faults, std::uint32_t value) { faults.segment = value; },
     [](const Misbehaviour& faults) { return faults.segment; },
     "... and that is segment N of each transfer (1)"},
};

}  // namespace

std::string FaultOption::Range() const {
  const std::string from = "from " + std::to_string(low);
  return high == kAny ? from : from + " to " + std::to_string(high);
}

std::span<const FaultOption> FaultOptions() { return kFaultOptions; }

const FaultOption* FindFaultOption(std::string_view name) {
  const auto found = std::find_if(std::begin(kFaultOptions), std::end(kFaultOptions),
                                  [&](const FaultOption& option) { return option.name == name; });
  return found == std::end(kFaultOptions) ? nullptr : found;
}

std::string FindContradiction(std::span<const std::string_view> given, const Misbehaviour& faults) {
  const auto isGiven = [&](std::string_view name) {
    return std::find(given.begin(), given.end(), name) != given.end();
  };
  if (isGiven("abort-at") && !isGiven("abort")) return "abort-at wants abort=CODE beside it";
  if (isGiven("segment") && !faults.wrongToggle && !faults.wrongSequence && !faults.dropSegment) {
    return "segment wants wrong-toggle, wrong-sequence or drop-segment beside it";
  }
  return {};
}

}  // namespace NDevices
