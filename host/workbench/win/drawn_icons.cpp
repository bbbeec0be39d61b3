#include "host/workbench/win/drawn_icons.h"

#include <cstdint>
#include <vector>

namespace NWorkbench {
namespace {

struct Point {
  double x, y;  // on a grid of 16 by 16
};

struct Shape {
  std::uint32_t colour;  // RRGGBB
  std::vector<Point> outline;
};

using Drawing = std::vector<Shape>;

std::vector<Point> Box(double left, double top, double right, double bottom) {
  return {{left, top}, {right, top}, {right, bottom}, {left, bottom}};
}

// Later shapes lie over earlier ones.
Drawing DrawingOf(DrawnIcon icon) {
  switch (icon) {
    case DrawnIcon::New:
      return {{0x5F6B7A, {{3, 1}, {10, 1}, {13, 4}, {13, 15}, {3, 15}}},
              {0xFFFFFF, {{4, 2}, {9.6, 2}, {12, 4.4}, {12, 14}, {4, 14}}},
              {0xB7C3D0, {{9.4, 2}, {12, 4.6}, {9.4, 4.6}}}};
    case DrawnIcon::Open:
      return {{0xC98F1E, {{1, 3}, {6, 3}, {7.5, 5}, {14, 5}, {14, 14}, {1, 14}}},
              {0xF6C65B, {{3.4, 7}, {15.4, 7}, {13.4, 14}, {1.2, 14}}}};
    case DrawnIcon::Save:
      return {{0x2F5D9B, Box(1.5, 1.5, 14.5, 14.5)},
              {0xFFFFFF, Box(4, 2.5, 12, 7)},
              {0xDCE6F2, Box(4, 9, 12, 14.5)},
              {0x2F5D9B, Box(9, 3.2, 11, 6.3)}};
    case DrawnIcon::Start:
      return {{0x2E9E4F, {{3.5, 1.5}, {14, 8}, {3.5, 14.5}}}};
    case DrawnIcon::Stop:
      return {{0xC4372D, Box(3, 3, 13, 13)}};
    case DrawnIcon::Channels:
      return {{0x5F6B7A, Box(1, 7.2, 15, 8.8)},
              {0x5F6B7A, Box(3.6, 5, 4.6, 8)},
              {0x5F6B7A, Box(11.4, 8, 12.4, 11)},
              {0x2F5D9B, Box(2, 1.5, 6.4, 5.5)},
              {0x2E9E4F, Box(9.6, 10.5, 14, 14.5)}};
  }
  return {};
}

bool IsInside(const std::vector<Point>& outline, Point point) {
  bool inside = false;
  for (std::size_t i = 0, j = outline.size() - 1; i < outline.size(); j = i++) {
    const Point &a = outline[i], &b = outline[j];
    if ((a.y > point.y) != (b.y > point.y) && point.x < (b.x - a.x) * (point.y - a.y) / (b.y - a.y) + a.x) {
      inside = !inside;
    }
  }
  return inside;
}

// Each pixel is the mean of 16 points in it; alpha is how many of them lie in a shape.
std::uint32_t PixelAt(const Drawing& drawing, int x, int y, int size) {
  constexpr int kSteps = 4;
  std::uint32_t red = 0, green = 0, blue = 0, hits = 0;
  for (int sample = 0; sample < kSteps * kSteps; ++sample) {
    const Point point = {(x + (sample % kSteps + 0.5) / kSteps) * 16 / size,
                         (y + (sample / kSteps + 0.5) / kSteps) * 16 / size};
    const Shape* top = nullptr;
    for (const Shape& shape : drawing) {
      if (IsInside(shape.outline, point)) top = &shape;
    }
    if (!top) continue;
    ++hits;
    red += top->colour >> 16;
    green += top->colour >> 8 & 0xFF;
    blue += top->colour & 0xFF;
  }
  if (hits == 0) return 0;
  const std::uint32_t alpha = hits * 255 / (kSteps * kSteps);
  return alpha << 24 | (red / hits) << 16 | (green / hits) << 8 | blue / hits;
}

}  // namespace

HICON MakeDrawnIcon(DrawnIcon icon, int size) {
  BITMAPINFO info = {};
  info.bmiHeader = {sizeof info.bmiHeader, size, -size, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  ICONINFO parts = {};
  parts.fIcon = TRUE;
  parts.hbmColor = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  if (!parts.hbmColor) return nullptr;
  const Drawing drawing = DrawingOf(icon);
  auto* pixel = static_cast<std::uint32_t*>(bits);
  // The mask is for screens without alpha: what is not drawn stays as it was.
  const std::size_t stride = static_cast<std::size_t>((size + 15) / 16) * 2;
  std::vector<std::uint8_t> mask(stride * static_cast<std::size_t>(size), 0);
  for (int y = 0; y < size; ++y) {
    for (int x = 0; x < size; ++x, ++pixel) {
      *pixel = PixelAt(drawing, x, y, size);
      if (*pixel >> 24 == 0)
        mask[static_cast<std::size_t>(y) * stride + static_cast<std::size_t>(x) / 8] |=
            static_cast<std::uint8_t>(0x80 >> x % 8);
    }
  }
  parts.hbmMask = CreateBitmap(size, size, 1, 1, mask.data());
  const HICON made = CreateIconIndirect(&parts);
  DeleteObject(parts.hbmColor);
  DeleteObject(parts.hbmMask);
  return made;
}

}  // namespace NWorkbench
