#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/bench/host.h"

namespace NBench {

/// An NMT command of the module's menus, and the nodes that its selection is answered with.
struct NmtOrder {
  std::wstring command;               ///< name in the registry
  std::vector<std::uint8_t> nodeIds;  ///< empty: all nodes
};

/// `kind` is operational, preoperational, stop or reset; `targets` is all, or node-IDs. Throws
/// std::runtime_error, one line that names the word at fault.
NmtOrder ParseNmtOrder(const std::string& kind, const std::vector<std::string>& targets,
                       std::uint32_t network);

/// Executes it as a menu would. False: the module refuses; what it says to the user comes as its message.
bool Execute(Host& host, const NmtOrder& order);

/// Words for a kind.
const std::vector<std::string>& NmtKinds();

}  // namespace NBench
