#include "host/bench/text_table.h"

#include <algorithm>
#include <cstdio>

#include "host/runtime/text.h"

namespace NBench {

std::string ColumnsText(const std::vector<std::vector<std::wstring>>& rows, std::size_t indent) {
  std::vector<std::size_t> widths;
  for (const auto& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
  }
  std::wstring text;
  for (const auto& row : rows) {
    std::wstring line(indent, L' ');
    for (std::size_t i = 0; i < row.size(); ++i) {
      if (widths[i] != 0) line += row[i] + std::wstring(widths[i] - row[i].size() + 2, L' ');
    }
    line.erase(line.find_last_not_of(L' ') + 1);
    text += line + L'\n';
  }
  return NRuntime::ToUtf8(text);
}

std::wstring HexDigits(unsigned number, int count) {
  char text[16];
  std::snprintf(text, sizeof text, "%0*X", count, number);
  return NRuntime::ToWide(text);
}

std::string CountText(std::size_t count, const char* what) {
  return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
}

}  // namespace NBench
