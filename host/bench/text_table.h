#pragma once

#include <string>
#include <vector>

namespace NBench {

/// Rows of cells as lines of text, in columns as wide as their longest cell; a column in which every cell is
/// empty is left out. Cells hold characters that take one column each. `indent` blanks stand in front.
std::string ColumnsText(const std::vector<std::vector<std::wstring>>& rows, std::size_t indent = 0);

/// A number in `count` hexadecimal digits, for a cell.
std::wstring HexDigits(unsigned number, int count);

/// "1 object", "3 objects"
std::string CountText(std::size_t count, const char* what);

}  // namespace NBench
