#include "host/bench/scan_view.h"

#include <nlohmann/json.hpp>

#include <chrono>

#include "host/bench/console.h"
#include "host/bench/node_document.h"
#include "host/bench/node_table.h"
#include "host/bench/node_words.h"
#include "host/bench/report.h"
#include "host/buses/candump.h"

namespace NBench {
namespace {

// By the clock on the wall: that of the host jumps when it replays a log at once.
constexpr std::chrono::milliseconds kShortestPeriod(100);

// What all of them share: the output and what may become of it.
class WrittenView : public ScanView {
 public:
  bool IsUnread() const override { return mOutput.Failed(); }
  std::string Fault() const override { return mOutput.Reason(); }

 protected:
  void WriteSummary(const ScanResult& result) {
    mOutput.Write(NodeCount(result.table.nodes.size()) + RunText(result.elapsed, result.errors.size()) +
                  '\n');
  }

  Output mOutput;
};

class ChangeLines final : public WrittenView {
 public:
  explicit ChangeLines(NodeScan& scan) : mScan(scan) {}

  void Changed(NRuntime::Time time) override {
    for (const NodeChange& change : mScan.TakeChanges()) {
      mOutput.Write(NBuses::ConsoleTime(time) + ChangeLine(change) + '\n');
    }
  }

  void Finish(const ScanResult& result) override { WriteSummary(result); }

 private:
  NodeScan& mScan;
};

class LiveTable final : public WrittenView {
 public:
  explicit LiveTable(const ScannerBlock& scanner) : mScanner(scanner) {}

  void Changed(NRuntime::Time) override { mIsOld = true; }

  void Refresh() override {
    const TerminalSize size = SizeOfTerminal(stdout);
    const auto now = std::chrono::steady_clock::now();
    if ((!mIsOld && size == mSize) || now - mDrawn < kShortestPeriod) return;
    mDrawn = now;
    mIsOld = false;
    mSize = size;
    const NodeTable table = mScanner.Table();
    mFoot.Show(LiveLines(table, size, NodeCount(table.nodes.size()) + ", listening; Ctrl+C ends"));
  }

  void MakeRoom() override {
    mFoot.Clear();
    mIsOld = true;
  }

  void Finish(const ScanResult& result) override {
    mFoot.Clear();
    for (const std::string& line : TableLines(result.table, SizeOfTerminal(stdout).columns - 1)) {
      mOutput.Write(line + '\n');
    }
    WriteSummary(result);
  }

 private:
  const ScannerBlock& mScanner;
  Foot mFoot{stdout};
  TerminalSize mSize;  // when it was last drawn
  std::chrono::steady_clock::time_point mDrawn{};
  bool mIsOld = true;
};

class ScanDocument final : public WrittenView {
 public:
  void Changed(NRuntime::Time) override {}

  void Finish(const ScanResult& result) override {
    const nlohmann::ordered_json document = {{"nodes", NodesDocument(result.table.nodes)},
                                             {"errors", result.errors}};
    mOutput.Write(DocumentText(document));
  }
};

}  // namespace

std::unique_ptr<ScanView> MakeChangeLines(NodeScan& scan) { return std::make_unique<ChangeLines>(scan); }

std::unique_ptr<ScanView> MakeLiveTable(const ScannerBlock& scanner) {
  return std::make_unique<LiveTable>(scanner);
}

std::unique_ptr<ScanView> MakeScanDocument() { return std::make_unique<ScanDocument>(); }

}  // namespace NBench
