#pragma once
// Where the controls of the generator's window stand in a client area of any size.

#include <vector>

#include "common/placement.h"
#include "common/split_position.h"

namespace NIg {

/// Sizes that follow the window's font and dpi, in pixels.
struct LayoutMetrics {
  int margin = 0;       ///< to the window's edge
  int gap = 0;          ///< between related controls
  int label = 0;        ///< height
  int button = 0;       ///< height
  int buttonWidth = 0;  ///< as its text wants it
  int bar = 0;          ///< thickness of a splitter
  int leastTree = 0;    ///< width
  int leastList = 0;    ///< height
};

struct PlacedControl {
  int id = 0;
  NCommon::Area area;  ///< without extent: there is no room for it
};

/// What a splitter divides: where the first part begins, and the size of both without the bar.
struct SplitSpan {
  int begin = 0;
  int length = 0;
};

struct GeneratorLayout {
  std::vector<PlacedControl> controls;
  SplitSpan across;  ///< template tree and lists
  SplitSpan down;    ///< sequence and cyclic list
};

/// Each list has its buttons below it. In a window that is too small for that, all buttons stand side by side
/// at the bottom, and the labels go where even then a list would not be high enough.
GeneratorLayout LayOut(int width, int height, const LayoutMetrics& metrics,
                       const NCommon::SplitPosition& tree, const NCommon::SplitPosition& lists);

}  // namespace NIg
