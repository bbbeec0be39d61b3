#pragma once
// Where a window was, as a configuration keeps it.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace NCommon {

/// A rectangle of the screen, or of a parent window, in pixels; right and bottom lie outside.
struct Area {
  std::int32_t left = 0;
  std::int32_t top = 0;
  std::int32_t right = 0;
  std::int32_t bottom = 0;

  std::int32_t Width() const { return right - left; }
  std::int32_t Height() const { return bottom - top; }
  friend bool operator==(const Area&, const Area&) = default;
};

struct Placement {
  Area area;  ///< where it is when it is not maximised
  bool maximised = false;

  friend bool operator==(const Placement&, const Placement&) = default;
};

/// "10 20 410 320", "10 20 410 320 maximised"
std::wstring PlacementText(const Placement& placement);
/// Empty: the text is no placement, or one without extent.
std::optional<Placement> ParsePlacement(std::wstring_view text);

/// The rectangle pushed, and where it is too large cut, so that it lies inside `space`. A space without
/// extent, that of a window which is not shown yet, changes nothing.
Area MovedInto(const Area& area, const Area& space);

}  // namespace NCommon
