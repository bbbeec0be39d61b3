#include <cstdio>

#include "host/bench/console.h"
#include "host/bench/report.h"
#include "host/buses/candump.h"

namespace NBench {
namespace {

std::string Count(std::uint64_t count, const char* one, const char* many) {
  return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

std::string Seconds(NRuntime::Time time) {
  char text[32];
  std::snprintf(text, sizeof text, "%.3f s", std::chrono::duration<double>(time).count());
  return text;
}

// Every frame as it leaves, one line at the end.
class TextReport final : public Report {
 public:
  explicit TextReport(bool withTimes) : mWithTimes(withTimes) {}

  void Sent(const NRuntime::SeenFrame& seen) override {
    const std::string time = mWithTimes ? NBuses::ConsoleTime(seen.time) : std::string();
    mOutput.Write(time + NBuses::ConsoleLine(seen.channel, seen.frame) + '\n');
  }

  void Finish(const Tally& tally) override {
    const std::string errors =
        tally.errors.empty() ? "no errors" : Count(tally.errors.size(), "error", "errors");
    mOutput.Write(ProgressText(tally) + ", " + Seconds(tally.elapsed) + ", " + errors + '\n');
  }

  bool IsUnread() const override { return mOutput.Failed(); }
  std::string Fault() const override { return mOutput.Reason(); }

 private:
  bool mWithTimes;
  Output mOutput;
};

}  // namespace

std::string ProgressText(const Tally& tally) {
  const std::string sent =
      tally.itemsSent == tally.itemsToSend ? "" : std::to_string(tally.itemsSent) + " of ";
  return sent + Count(tally.itemsToSend, "item", "items") + ", " + Count(tally.framesSent, "frame", "frames");
}

std::unique_ptr<Report> MakeTextReport(bool withTimes) { return std::make_unique<TextReport>(withTimes); }

}  // namespace NBench
