#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/bench/inserted_block.h"
#include "host/bench/node_names.h"
#include "host/runtime/application.h"
#include "host/runtime/com.h"
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

/// A scanner block of the module, as long as it is in the setup.
class ScannerBlock {
 public:
  /// Inserts the block by the module's command. `names` are shown for nodes whose own name was not heard.
  /// Throws std::runtime_error when the module has no such command or block, or it refuses.
  ScannerBlock(const NRuntime::Application& application, NRuntime::Setup& setup, NodeNames names);

  /// Differs whenever the table has changed.
  std::uint32_t ChangeCount() const;
  std::vector<ScannedNode> Nodes() const;
  NodeTable Table() const;

  const NRuntime::ComPtr<IUnknown>& Object() const { return mInserted.Object(); }

 private:
  InsertedBlock mInserted;
  NRuntime::ComPtr<NSdk::IScanner> mScanner;
  NRuntime::ComPtr<NSdk::IModel> mModel;
  NodeNames mNames;
};

}  // namespace NBench
