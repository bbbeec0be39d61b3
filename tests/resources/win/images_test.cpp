#include <gtest/gtest.h>
#include <windows.h>

#include <set>
#include <string>

#include "resources/resource_ids.h"

namespace {

constexpr COLORREF kTransparent = RGB(255, 255, 255);

class Pixels {
 public:
  explicit Pixels(int number)
      : mBitmap(LoadBitmapW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(number))),
        mContext(CreateCompatibleDC(nullptr)) {
    SelectObject(mContext, mBitmap);
    BITMAP bitmap{};
    GetObjectW(mBitmap, sizeof bitmap, &bitmap);
    size = {bitmap.bmWidth, bitmap.bmHeight};
  }
  ~Pixels() {
    DeleteDC(mContext);
    DeleteObject(mBitmap);
  }
  COLORREF At(int x, int y) const { return GetPixel(mContext, x, y); }

  SIZE size{};

 private:
  HBITMAP mBitmap;
  HDC mContext;
};

TEST(Images, NodesAreEightThatDifferOnTransparentGround) {
  for (const auto& [number, edge] :
       {std::pair{IDB_SCAN_NODES, 16}, {IDB_SCAN_NODES_24, 24}, {IDB_SCAN_NODES_32, 32}}) {
    const Pixels strip(number);
    ASSERT_EQ(strip.size.cx, 8 * edge) << number;
    ASSERT_EQ(strip.size.cy, edge) << number;
    std::set<std::string>
        shapes;  // without colours: who does not see them must tell the images apart as well
    for (int image = 0; image < 8; ++image) {
      EXPECT_EQ(strip.At(image * edge, 0), kTransparent) << number << ", image " << image;
      std::string shape;
      for (int at = 0; at < edge * edge; ++at) {
        shape += strip.At(image * edge + at % edge, at / edge) == kTransparent ? ' ' : '#';
      }
      shapes.insert(shape);
    }
    EXPECT_EQ(shapes.size(), 8u) << number;
  }
}

TEST(Images, CommandsHaveBitmapsAndIconsOfEverySize) {
  for (const int number : {228, 773, 794, 795, 796, 797}) {
    const Pixels image(number);
    EXPECT_EQ(image.size.cx, 16) << number;
    EXPECT_EQ(image.size.cy, 16) << number;
    EXPECT_EQ(image.At(0, 0), kTransparent) << number;
  }
  for (int number = 248; number <= 259; ++number) {
    const HRSRC found = FindResourceW(nullptr, MAKEINTRESOURCEW(number), RT_GROUP_ICON);
    ASSERT_TRUE(found) << number;
    const auto* group = static_cast<const std::uint8_t*>(LockResource(LoadResource(nullptr, found)));
    std::set<int> edges;
    for (int image = 0; image < group[4]; ++image) {
      const std::uint8_t* entry = group + 6 + 14 * image;  // of a GRPICONDIR
      edges.insert(entry[0]);
      EXPECT_EQ(entry[6], 32) << number;  // bits per pixel
    }
    EXPECT_EQ(edges, number % 2 == 0 ? std::set({16, 20, 24, 32}) : std::set({32, 40, 48, 64})) << number;
  }
}

}  // namespace
