#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "host/bench/host.h"
#include "host/bench/node_words.h"
#include "host/bench/scanner_block.h"

namespace NBench {

/// The nodes that a measurement hears. One scanner block serves all channels, so that none is listed twice.
class NodeScan {
 public:
  /// Gets the time since the start of the measurement.
  using Listener = std::function<void(NRuntime::Time)>;

  /// `changed` is called behind every frame that has changed the table, before the next one is delivered, and
  /// when time has changed it. Throws as ScannerBlock does.
  NodeScan(Host& host, Listener changed);
  NodeScan(const NodeScan&) = delete;
  NodeScan& operator=(const NodeScan&) = delete;

  /// For the measurement, in their order there. It must be stopped before the scan is let go.
  std::vector<NRuntime::ComPtr<IUnknown>> Blocks() const { return {mScanner.Object(), mBehind}; }
  /// Looks for nodes that have fallen silent. Belongs beside what shows the table now and then.
  void CheckTime() { Check(mHost.Measurement().Elapsed()); }

  const ScannerBlock& Scanner() const { return mScanner; }
  /// What is new since the last call.
  std::vector<NodeChange> TakeChanges();

 private:
  class BlockBehind;

  void Check(NRuntime::Time time);

  Host& mHost;
  Listener mChanged;
  ScannerBlock mScanner;
  NRuntime::ComPtr<IUnknown> mBehind;
  std::uint32_t mChangeCount;       // when the listener was last called
  std::vector<ScannedNode> mNodes;  // when the changes were last taken
};

}  // namespace NBench
