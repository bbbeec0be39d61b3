#include <nlohmann/json.hpp>

#include <cstdio>

#include "host/bench/console.h"
#include "host/bench/node_document.h"
#include "host/bench/report.h"
#include "host/buses/candump.h"

namespace NBench {
namespace {

using Json = nlohmann::ordered_json;

// Whole microseconds, so that the numbers have no digits that mean nothing.
double Microseconds(NRuntime::Time time) {
  return static_cast<double>(std::chrono::duration_cast<std::chrono::microseconds>(time).count());
}

double Seconds(NRuntime::Time time) { return Microseconds(time) / 1e6; }
double Milliseconds(NRuntime::Time time) { return Microseconds(time) / 1e3; }

Json FrameDocument(const NRuntime::SeenFrame& seen) {
  return {{"time", Seconds(seen.time)},
          {"channel", seen.channel},
          {"id", seen.frame.identifier},
          {"extended", (seen.frame.flags & NSdk::kFrameExtended) != 0},
          {"remote", (seen.frame.flags & NSdk::kFrameRemote) != 0},
          {"data", NBuses::DataText(seen.frame)}};
}

std::string Hexadecimal(const std::vector<std::uint8_t>& data) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (const std::uint8_t byte : data) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

Json AbortDocument(std::uint32_t code) {
  if (code == 0) return nullptr;
  char text[9];
  std::snprintf(text, sizeof text, "%08lX", static_cast<unsigned long>(code));
  return text;
}

Json TransferDocument(const SdoTransfer& transfer) {
  constexpr const char* kKinds[] = {"expedited", "segmented", "block"};
  constexpr const char* kOutcomes[] = {"ok", "aborted", "timeout"};
  return {{"node", transfer.node},
          {"index", transfer.index},
          {"subindex", transfer.subIndex},
          {"direction", transfer.direction == SdoDirection::Upload ? "upload" : "download"},
          {"kind", kKinds[static_cast<int>(transfer.kind)]},
          {"bytes", transfer.bytes},
          {"data", Hexadecimal(transfer.data)},
          {"result", kOutcomes[static_cast<int>(transfer.outcome)]},
          {"abort", AbortDocument(transfer.abortCode)},
          {"ms", Milliseconds(transfer.ended - transfer.started)}};
}

// One document at the end; nothing else on standard output.
class JsonReport final : public Report {
 public:
  void Seen(const NRuntime::SeenFrame& frame) override {
    if (frame.direction == NSdk::kCanTransmitted) mFrames.push_back(frame);
  }

  void Transferred(const SdoTransfer& transfer) override { mTransfers.push_back(TransferDocument(transfer)); }

  void Changed(NRuntime::Time, const NodeChange&) override {}

  void Finish(const Tally& tally) override {
    Json document = {{"items", tally.itemsSent},
                     {"frames", Json::array()},
                     {"transfers", mTransfers},
                     {"errors", tally.errors}};
    if (tally.nodes) document["nodes"] = NodesDocument(tally.nodes->nodes);
    for (const NRuntime::SeenFrame& frame : mFrames) document["frames"].push_back(FrameDocument(frame));
    mOutput.Write(DocumentText(document));
  }

  bool IsUnread() const override { return mOutput.Failed(); }
  std::string Fault() const override { return mOutput.Reason(); }

 private:
  std::vector<NRuntime::SeenFrame> mFrames;
  Json mTransfers = Json::array();
  Output mOutput;
};

}  // namespace

std::unique_ptr<Report> MakeJsonReport() { return std::make_unique<JsonReport>(); }

}  // namespace NBench
