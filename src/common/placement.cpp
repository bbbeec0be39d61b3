#include "common/placement.h"

#include <algorithm>
#include <locale>
#include <sstream>

namespace NCommon {
namespace {

constexpr wchar_t kMaximised[] = L"maximised";
constexpr std::int32_t kFarthest = 1'000'000;  // pixels; no screen is there

bool IsSensible(std::int32_t edge) { return edge >= -kFarthest && edge <= kFarthest; }

// The edges of one direction, moved and cut.
void MoveEdges(std::int32_t& first, std::int32_t& last, std::int32_t firstAllowed, std::int32_t lastAllowed) {
  const std::int32_t length = std::min(last - first, lastAllowed - firstAllowed);
  first = std::clamp(first, firstAllowed, lastAllowed - length);
  last = first + length;
}

}  // namespace

std::wstring PlacementText(const Placement& placement) {
  const Area& area = placement.area;
  std::wstring text;
  for (const std::int32_t edge : {area.left, area.top, area.right, area.bottom}) {
    text += (text.empty() ? L"" : L" ") + std::to_wstring(edge);
  }
  return placement.maximised ? text + L' ' + kMaximised : text;
}

std::optional<Placement> ParsePlacement(std::wstring_view text) {
  std::wistringstream stream{std::wstring(text)};
  stream.imbue(std::locale::classic());
  Placement placement;
  Area& area = placement.area;
  if (!(stream >> area.left >> area.top >> area.right >> area.bottom)) return std::nullopt;
  std::wstring state;
  std::wstring rest;
  if (stream >> state && (state != kMaximised || stream >> rest)) return std::nullopt;
  placement.maximised = !state.empty();
  const bool sensible =
      IsSensible(area.left) && IsSensible(area.top) && IsSensible(area.right) && IsSensible(area.bottom);
  if (!sensible || area.Width() <= 0 || area.Height() <= 0) return std::nullopt;
  return placement;
}

Area MovedInto(const Area& area, const Area& space) {
  if (space.Width() <= 0 || space.Height() <= 0) return area;
  Area moved = area;
  MoveEdges(moved.left, moved.right, space.left, space.right);
  MoveEdges(moved.top, moved.bottom, space.top, space.bottom);
  return moved;
}

}  // namespace NCommon
