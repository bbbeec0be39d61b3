#include <nlohmann/json.hpp>

#include "host/bench/console.h"
#include "host/bench/report.h"
#include "host/buses/candump.h"

namespace NBench {
namespace {

using Json = nlohmann::ordered_json;

// Whole microseconds, so that the number has no digits that mean nothing.
double Seconds(NRuntime::Time time) {
  return static_cast<double>(std::chrono::duration_cast<std::chrono::microseconds>(time).count()) / 1e6;
}

Json FrameDocument(const NRuntime::SeenFrame& seen) {
  return {{"time", Seconds(seen.time)},
          {"channel", seen.channel},
          {"id", seen.frame.identifier},
          {"extended", (seen.frame.flags & NSdk::kFrameExtended) != 0},
          {"remote", (seen.frame.flags & NSdk::kFrameRemote) != 0},
          {"data", NBuses::DataText(seen.frame)}};
}

// One document at the end; nothing else on standard output.
class JsonReport final : public Report {
 public:
  void Sent(const NRuntime::SeenFrame& frame) override { mFrames.push_back(frame); }

  void Finish(const Tally& tally) override {
    Json document = {{"items", tally.itemsSent},
                     {"frames", Json::array()},
                     {"transfers", Json::array()},
                     {"errors", tally.errors}};
    for (const NRuntime::SeenFrame& frame : mFrames) document["frames"].push_back(FrameDocument(frame));
    mOutput.Write(document.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n');
  }

  bool IsUnread() const override { return mOutput.Failed(); }
  std::string Fault() const override { return mOutput.Reason(); }

 private:
  std::vector<NRuntime::SeenFrame> mFrames;
  Output mOutput;
};

}  // namespace

std::unique_ptr<Report> MakeJsonReport() { return std::make_unique<JsonReport>(); }

}  // namespace NBench
