#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

#include "host/bench/scanner_block.h"

namespace NBench {

nlohmann::ordered_json NodesDocument(const std::vector<ScannedNode>& nodes);

/// One line, line end included. What is not UTF-8 is replaced, and nothing but ASCII stands in it: a document
/// that ends up on a terminal does nothing there.
std::string DocumentText(const nlohmann::ordered_json& document);

}  // namespace NBench
