#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/bench/scanner_block.h"

namespace NBench {

/// Text from the bus for a screen: only characters that take one column each and do nothing else pass, any
/// other becomes "?".
std::wstring Printable(std::string_view utf8);

/// The module's text for the state of a node; where it has none, the number, or "unknown".
std::wstring StateWords(const ScannedNode& node);

/// A number as CANopen's tables write it: "1Ah".
std::string Hexadecimal(std::uint32_t number);

/// An error register as a number: "11h".
std::string ErrorNumber(std::uint32_t errorRegister);
/// Its bits in words (CiA 301, object 1001h): "generic, communication".
std::string ErrorWords(std::uint32_t errorRegister);

/// One thing about a node that is new, in words for a screen.
struct NodeChange {
  std::uint32_t channel = 0;
  std::uint32_t node = 0;
  std::string text;
};

/// What has become of a table, ordered as it is.
std::vector<NodeChange> DescribeChanges(const std::vector<ScannedNode>& before,
                                        const std::vector<ScannedNode>& after);

/// `  can1  node 5: state Operational`. No line end.
std::string ChangeLine(const NodeChange& change);

/// "1 node", "3 nodes"
std::string NodeCount(std::size_t count);

}  // namespace NBench
