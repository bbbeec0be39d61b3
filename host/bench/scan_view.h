#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/bench/node_scan.h"
#include "host/runtime/loop.h"

namespace NBench {

/// What a scan has come to.
struct ScanResult {
  NodeTable table;
  NRuntime::Time elapsed{};
  std::vector<std::string> errors;  ///< one per trouble with a bus or file, or message of the module
};

/// How a scan is shown to the user.
class ScanView {
 public:
  virtual ~ScanView() = default;
  /// The table has changed, at this time since the start.
  virtual void Changed(NRuntime::Time time) = 0;
  /// Some tenths of a second have passed.
  virtual void Refresh() {}
  /// Something else is about to be written.
  virtual void MakeRoom() {}
  virtual void Finish(const ScanResult& result) = 0;
  /// Nobody reads any more.
  virtual bool IsUnread() const = 0;
  /// Why not all could be shown; empty when it was, or when the reader has just left.
  virtual std::string Fault() const = 0;
};

/// A line for each change, as it comes.
std::unique_ptr<ScanView> MakeChangeLines(NodeScan& scan);
/// The table on a terminal, drawn in its place.
std::unique_ptr<ScanView> MakeLiveTable(const ScannerBlock& scanner);
/// One JSON document at the end.
std::unique_ptr<ScanView> MakeScanDocument();

}  // namespace NBench
