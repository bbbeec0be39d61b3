#pragma once
// What the scanner's window shows of its nodes; the window only paints it. Nodes are read through their
// interface.

#include <span>
#include <string>

#include "sdk/scanner.h"

namespace NScanner {

enum class Alignment { Left, Centre };

struct Column {
  std::uint32_t textId;  ///< string table
  Alignment alignment;
  std::int32_t width;  ///< pixels at 96 dpi
};

/// One per NSdk::ScannerColumn.
std::span<const Column> Columns();

/// Text of a cell; node-IDs are decimal where the number base is 10, else hexadecimal. Empty for a column
/// that there is not. Raises E:"node" for null.
std::wstring CellText(NSdk::ICANopenNode* node, std::uint32_t column, std::uint32_t numberBase);

/// Images of a row, in the order of the bitmap: silent or unknown, booting or stopped, pre-operational,
/// operational, and these four with an error mark. Raises E:"node" for null.
std::uint32_t RowImage(NSdk::ICANopenNode* node);

/// Identity, and a line for each error that the node has reported. Raises E:"node" for null.
std::wstring ToolTip(NSdk::ICANopenNode* node);

}  // namespace NScanner
