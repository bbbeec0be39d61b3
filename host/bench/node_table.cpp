#include "host/bench/node_table.h"

#include <algorithm>

#include "host/bench/node_words.h"
#include "host/runtime/text.h"

namespace NBench {
namespace {

constexpr std::size_t kShortHeading = 4;
constexpr std::size_t kUsualName = 20;
constexpr std::size_t kNameWorthReading = 16;
constexpr std::size_t kShortestName = 8;

// Behind the columns of the module stand those for which it has no heading.
enum OwnColumn : std::size_t {
  kColumnAlive = NSdk::kScannerColumns,
  kColumnErrors,
  kColumnProfile,
  kColumnVendor,
  kColumnSerial,
  kColumns
};

struct Column {
  std::size_t number = 0;
  std::wstring heading;
  std::wstring shortHeading;
  std::vector<std::wstring> cells;  // one for each node

  std::size_t ContentWidth() const {
    std::size_t width = 0;
    for (const std::wstring& cell : cells) width = std::max(width, cell.size());
    return width;
  }
  std::size_t Width() const { return std::max(heading.size(), ContentWidth()); }
  bool SaysNothing() const {
    return std::all_of(cells.begin(), cells.end(), [](const std::wstring& cell) {
      return cell.empty() || cell == L" " || cell == L"?" || cell == L"--";
    });
  }
};

struct Layout {
  std::vector<Column> columns;
  std::size_t gap = 2;

  std::size_t Width() const {
    std::size_t width = 0;
    for (const Column& column : columns) width += (width == 0 ? 0 : gap) + column.Width();
    return width;
  }

  Column* Find(std::size_t number) {
    const auto found = std::find_if(columns.begin(), columns.end(),
                                    [&](const Column& column) { return column.number == number; });
    return found == columns.end() ? nullptr : &*found;
  }
};

std::wstring Number(const std::optional<std::uint32_t>& number) {
  return number ? std::to_wstring(*number) : L"--";
}

std::wstring Cell(const ScannedNode& node, std::size_t column) {
  switch (column) {
    case NSdk::kColumnState:
      return StateWords(node);
    case kColumnAlive:
      return node.alive ? L"yes" : L"no";
    case kColumnErrors:
      if (node.errorRegister == 0) return L"no";
      return NRuntime::ToWide(ErrorNumber(node.errorRegister) + ' ' + ErrorWords(node.errorRegister));
    case kColumnProfile:
      return Number(node.profile);
    case kColumnVendor:
      return node.vendorId ? NRuntime::ToWide(Hexadecimal(*node.vendorId)) : L"--";
    case kColumnSerial:
      return Number(node.serial);
    default:
      return Printable(node.cells[column]);
  }
}

Column MakeColumn(const NodeTable& table, std::size_t number) {
  constexpr const wchar_t* kOwn[][2] = {{L"Alive", L"Alive"},
                                        {L"Error", L"Err"},
                                        {L"Profile", L"Prof"},
                                        {L"Vendor", L"Vend"},
                                        {L"Serial", L"Ser"}};
  Column column = {number, {}, {}, {}};
  if (number < NSdk::kScannerColumns) {
    column.heading = Printable(table.headings[number]);
    column.shortHeading = column.heading.substr(0, kShortHeading);
  } else {
    column.heading = kOwn[number - NSdk::kScannerColumns][0];
    column.shortHeading = kOwn[number - NSdk::kScannerColumns][1];
  }
  for (const ScannedNode& node : table.nodes) {
    column.cells.push_back(Cell(node, number));
  }
  return column;
}

// A name shows by two points that there is more of it.
std::wstring Cut(std::wstring text, std::size_t width) {
  if (text.size() <= width) return text;
  return text.substr(0, width - 2) + L"..";
}

// The longest names give what the line is too long, down to a width.
void CutNames(Layout& layout, std::size_t room, std::size_t least) {
  Column* const names = layout.Find(NSdk::kColumnName);
  const std::size_t width = layout.Width(), now = names->Width();
  if (width <= room || now <= least) return;
  const std::size_t wanted = std::max(least, now - std::min(now, width - room));
  for (std::wstring& cell : names->cells) cell = Cut(cell, wanted);
}

void NumbersForErrors(Layout& layout) {
  for (std::wstring& cell : layout.Find(kColumnErrors)->cells) cell = cell.substr(0, cell.find(L' '));
}

void ShortenHeadings(Layout& layout) {
  for (Column& column : layout.columns) {
    if (column.ContentWidth() < column.heading.size()) column.heading = column.shortHeading;
  }
}

// From the least important one on; ID, state, channel, name, alive and errors stay.
void LeaveOut(Layout& layout, std::size_t room, bool onlyEmpty) {
  constexpr std::size_t kOrder[] = {kColumnSerial, kColumnVendor, NSdk::kColumnPriority, NSdk::kColumnMaster,
                                    kColumnProfile};
  for (const std::size_t number : kOrder) {
    if (layout.Width() <= room) return;
    std::erase_if(layout.columns, [&](const Column& column) {
      return column.number == number && (!onlyEmpty || column.SaysNothing());
    });
  }
}

// Each step gives up a little more, and only as many are taken as it needs.
void Fit(Layout& layout, std::size_t room) {
  if (layout.Width() > room) NumbersForErrors(layout);
  if (layout.Width() > room) layout.gap = 1;
  if (layout.Width() > room) ShortenHeadings(layout);
  CutNames(layout, room, kUsualName);
  LeaveOut(layout, room, true);
  CutNames(layout, room, kNameWorthReading);
  LeaveOut(layout, room, false);
  CutNames(layout, room, kShortestName);
}

// Line 0 has the headings.
std::string Line(const Layout& layout, std::size_t position, std::size_t width) {
  std::wstring line;
  for (const Column& column : layout.columns) {
    const std::wstring& cell = position == 0 ? column.heading : column.cells[position - 1];
    line += cell;
    line.append(column.Width() - cell.size() + layout.gap, L' ');
  }
  line.resize(std::min(line.size(), width));
  line.erase(line.find_last_not_of(L' ') + 1);
  return NRuntime::ToUtf8(line);
}

}  // namespace

std::vector<std::string> TableLines(const NodeTable& table, std::size_t width) {
  Layout layout;
  for (std::size_t number = 0; number < kColumns; ++number)
    layout.columns.push_back(MakeColumn(table, number));
  Fit(layout, width);
  std::vector<std::string> lines;
  for (std::size_t position = 0; position <= table.nodes.size(); ++position) {
    lines.push_back(Line(layout, position, width));
  }
  return lines;
}

std::vector<std::string> LiveLines(const NodeTable& table, const TerminalSize& size,
                                   const std::string& last) {
  const std::size_t width = size.columns - 1;  // behind a full line terminals differ
  std::vector<std::string> lines;
  if (!table.nodes.empty()) lines = TableLines(table, width);
  const std::size_t room = std::max<std::size_t>(size.rows, 4) - 1;
  if (lines.size() > room) {
    const std::size_t left = lines.size() - (room - 1);
    lines.resize(room - 1);
    lines.push_back(("and " + NodeCount(left) + " more").substr(0, width));
  }
  lines.push_back(last.substr(0, width));
  return lines;
}

}  // namespace NBench
