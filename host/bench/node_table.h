#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "host/bench/console.h"
#include "host/bench/scanner_block.h"

namespace NBench {

/// The table as lines for a screen, headings first, none longer than `width` columns. Where that is too
/// little for everything, words give way to numbers, long names are cut, then columns are left out, first
/// those in which no node has anything to say.
std::vector<std::string> TableLines(const NodeTable& table, std::size_t width);

/// The table for the foot of a terminal, and a line below it. Nodes for which there is no room are counted.
std::vector<std::string> LiveLines(const NodeTable& table, const TerminalSize& size, const std::string& last);

}  // namespace NBench
