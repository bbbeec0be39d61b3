#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/bench/node_names.h"
#include "host/runtime/application.h"
#include "host/runtime/com.h"
#include "host/runtime/module.h"
#include "sdk/scanner.h"

namespace NBench {

/// A row of the scanner's table. Texts are UTF-8 and as the bus brought them: nothing to put on a screen.
struct ScannedNode {
  std::uint32_t id = 0;
  std::uint32_t channel = 0;
  std::uint32_t state = NSdk::kNodeStateUnknown;  ///< as ICANopenNode has it
  bool alive = false;
  std::uint32_t errorRegister = 0;
  std::uint32_t image = 0;
  std::array<std::string, NSdk::kScannerColumns> cells;  ///< texts of the module, by ScannerColumn
  std::optional<std::string> name;
  std::optional<std::uint32_t> profile, vendorId, serial;
};

struct NodeTable {
  std::array<std::string, NSdk::kScannerColumns> headings;
  std::vector<ScannedNode> nodes;  ///< by channel and node-ID
};

/// A scanner block of the module, from its creation to its end.
class ScannerBlock {
 public:
  /// Creates the block and gives it its place in the host. `names` are shown for nodes whose own name was not
  /// heard. Throws std::runtime_error when the module has no such block or it refuses.
  ScannerBlock(const NRuntime::Module& module, NRuntime::Application& application, NodeNames names);
  ~ScannerBlock();
  ScannerBlock(const ScannerBlock&) = delete;
  ScannerBlock& operator=(const ScannerBlock&) = delete;

  /// Differs whenever the table has changed.
  std::uint32_t ChangeCount() const;
  std::vector<ScannedNode> Nodes() const;
  NodeTable Table() const;

  const NRuntime::ComPtr<IUnknown>& Object() const { return mObject; }

 private:
  NRuntime::ComPtr<IUnknown> mObject;
  NRuntime::ComPtr<NSdk::IPlugInBlock> mBlock;
  NRuntime::ComPtr<NSdk::IScanner> mScanner;
  NRuntime::ComPtr<NSdk::IModel> mModel;
  NodeNames mNames;
};

}  // namespace NBench
