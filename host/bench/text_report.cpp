#include <cstdio>
#include <limits>

#include "host/bench/console.h"
#include "host/bench/frame_words.h"
#include "host/bench/node_table.h"
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

std::string TransfersText(const Tally& tally) {
  if (tally.transfers == 0) return {};
  const std::string failed =
      tally.transfersFailed == 0 ? "" : " (" + std::to_string(tally.transfersFailed) + " failed)";
  return ", " + Count(tally.transfers, "SDO transfer", "SDO transfers") + failed;
}

// Frames and transfers as they come, one line at the end.
class TextReport final : public Report {
 public:
  explicit TextReport(const View& view) : mView(view) {}

  void Seen(const NRuntime::SeenFrame& seen) override {
    if (!mView.frames) return;
    const std::string time = mView.times ? NBuses::ConsoleTime(seen.time) : std::string();
    std::string line = NBuses::ConsoleLine(seen.channel, seen.frame);
    if (mView.words) line = WithWords(std::move(line), seen.frame);
    mOutput.Write(time + line + '\n');
  }

  void Transferred(const SdoTransfer& transfer) override {
    if (!mView.transfers) return;
    const std::size_t indent = mView.times ? NBuses::ConsoleTime({}).size() : 0;
    mOutput.Write(std::string(indent, ' ') + "  " + InWords(transfer) + '\n');
  }

  void Changed(NRuntime::Time time, const NodeChange& change) override {
    if (!mView.changes) return;
    mOutput.Write((mView.times ? NBuses::ConsoleTime(time) : std::string()) + ChangeLine(change) + '\n');
  }

  void Finish(const Tally& tally) override {
    if (tally.nodes) WriteTable(*tally.nodes);
    mOutput.Write(ProgressText(tally) + TransfersText(tally) + RunText(tally.elapsed, tally.errors.size()) +
                  '\n');
  }

  bool IsUnread() const override { return mOutput.Failed(); }
  std::string Fault() const override { return mOutput.Reason(); }

 private:
  void WriteTable(const NodeTable& table) {
    const std::size_t width =
        IsTerminal(stdout) ? SizeOfTerminal(stdout).columns - 1 : std::numeric_limits<std::size_t>::max();
    mOutput.Write("\n");
    for (const std::string& line : TableLines(table, width)) mOutput.Write(line + '\n');
    mOutput.Write("\n");
  }

  View mView;
  Output mOutput;
};

}  // namespace

std::string ProgressText(const Tally& tally) {
  const std::string sent =
      tally.itemsSent == tally.itemsToSend ? "" : std::to_string(tally.itemsSent) + " of ";
  return sent + Count(tally.itemsToSend, "item", "items") + ", " + Count(tally.framesSent, "frame", "frames");
}

std::string RunText(NRuntime::Time elapsed, std::size_t errors) {
  return ", " + Seconds(elapsed) + ", " + (errors == 0 ? "no errors" : Count(errors, "error", "errors"));
}

std::unique_ptr<Report> MakeTextReport(const View& view) { return std::make_unique<TextReport>(view); }

}  // namespace NBench
