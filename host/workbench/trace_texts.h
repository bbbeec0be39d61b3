#pragma once

#include <string>

#include "host/workbench/trace_store.h"

namespace NWorkbench {

/// Columns of the trace, from the left.
enum class TraceColumn { Time, Channel, Direction, Identifier, Service, Node, Size, Data };
inline constexpr int kTraceColumns = 8;

/// Text of a cell. `numberBase` is 10 or 16; time is in seconds.
std::wstring TraceText(const TraceRow& row, TraceColumn column, std::uint32_t numberBase);

/// All cells with tabulators between them, without a line end.
std::wstring TraceLine(const TraceRow& row, std::uint32_t numberBase);

}  // namespace NWorkbench
