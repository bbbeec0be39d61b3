#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "com/com_ptr.h"
#include "ig/generator_node.h"

namespace NNmt {

/// An NMT command (CiA 301, 7.2.8.3.1).
struct NmtRequest {
  std::uint8_t command = 0;  ///< command specifier: 1, 2, 128, 129 or 130
  std::uint8_t nodeId = 0;   ///< 0: all nodes
};

/// A node as a database names it.
struct DatabaseNode {
  std::uint32_t nodeId = 0;
  std::wstring name;
};

/// Puts NMT commands on the CAN channel of a generator block.
class ZNMTTransmitter {
 public:
  /// Null: none. `network` is the name of the block's network, as the user knows it.
  void Bind(NIg::ZCANopenIGNode* block, std::wstring network = {}) {
    mBlock = block;
    mNetwork = std::move(network);
  }
  const std::wstring& Network() const { return mNetwork; }
  /// False: there is no block, or no request. True does not say that the command was sent: a block outside a
  /// measurement sends nothing.
  bool SendCommand(const NmtRequest* request);
  /// The nodes that the databases of the block's channel describe, in their order. False: there is no block,
  /// and no node.
  bool GetDatabaseNodes(std::vector<DatabaseNode>& nodes);

 private:
  NCom::ComPtr<NIg::ZCANopenIGNode> mBlock;
  std::wstring mNetwork;
};

}  // namespace NNmt
