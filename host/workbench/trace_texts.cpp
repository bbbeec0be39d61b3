#include "host/workbench/trace_texts.h"

#include <cwchar>

#include "host/workbench/service.h"

namespace NWorkbench {
namespace {

constexpr std::uint32_t kHexadecimal = 16;

template <class... Arguments>
std::wstring Print(const wchar_t* format, Arguments... arguments) {
  wchar_t text[48];
  const int size = std::swprintf(text, sizeof text / sizeof *text, format, arguments...);
  return size > 0 ? std::wstring(text, static_cast<std::size_t>(size)) : std::wstring();
}

std::wstring TimeText(std::int64_t time_ns) {
  const long long time_us = time_ns / 1000;
  return Print(L"%lld.%06lld", time_us / 1'000'000, time_us % 1'000'000);
}

std::wstring IdentifierText(const TraceRow& row, bool hexadecimal) {
  if (!hexadecimal) return std::to_wstring(row.identifier) + (row.extended ? L"x" : L"");
  return row.extended ? Print(L"%08Xx", row.identifier) : Print(L"%03X", row.identifier);
}

std::wstring DataText(const TraceRow& row, bool hexadecimal) {
  if (row.remote) return L"remote";
  std::wstring text;
  for (int position = 0; position < row.size; ++position) {
    if (position != 0) text += L' ';
    text += Print(hexadecimal ? L"%02X" : L"%3u", static_cast<unsigned>(row.data[position]));
  }
  return text;
}

}  // namespace

std::wstring TraceText(const TraceRow& row, TraceColumn column, std::uint32_t numberBase) {
  const bool hexadecimal = numberBase == kHexadecimal;
  switch (column) {
    case TraceColumn::Time:
      return TimeText(row.time_ns);
    case TraceColumn::Channel:
      return std::to_wstring(row.channel);
    case TraceColumn::Direction:
      return row.transmitted ? L"Tx" : L"Rx";
    case TraceColumn::Identifier:
      return IdentifierText(row, hexadecimal);
    case TraceColumn::Service:
      return ServiceName(ServiceOf(row.identifier, row.extended));
    case TraceColumn::Node: {
      const std::uint32_t node = NodeOf(row.identifier, row.extended);
      return node == 0 ? std::wstring() : Print(hexadecimal ? L"%02X" : L"%u", node);
    }
    case TraceColumn::Size:
      return std::to_wstring(row.size);
    case TraceColumn::Data:
      return DataText(row, hexadecimal);
  }
  return {};
}

std::wstring TraceLine(const TraceRow& row, std::uint32_t numberBase) {
  std::wstring line;
  for (int column = 0; column < kTraceColumns; ++column) {
    if (column != 0) line += L'\t';
    line += TraceText(row, static_cast<TraceColumn>(column), numberBase);
  }
  return line;
}

}  // namespace NWorkbench
