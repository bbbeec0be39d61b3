#include "common/win/image_list.h"

#include <algorithm>

#include "common/pixels.h"
#include "common/win/dpi.h"
#include "common/win/resources.h"

namespace NCommon {
namespace {

constexpr int kGrowBy = 4;
constexpr std::uint32_t kOpaque = 0xFF000000;

BITMAPINFO Description(int width, int height) {
  BITMAPINFO info = {};
  info.bmiHeader.biSize = sizeof(info.bmiHeader);
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;  // from the top
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  return info;
}

// Empty: the bitmap cannot be read.
Pixels ReadPixels(HBITMAP bitmap, COLORREF transparent) {
  BITMAP size = {};
  GetObjectW(bitmap, sizeof(size), &size);
  Pixels pixels = {static_cast<int>(size.bmWidth), static_cast<int>(size.bmHeight), {}};
  pixels.values.resize(static_cast<std::size_t>(pixels.width) * static_cast<std::size_t>(pixels.height));
  BITMAPINFO info = Description(pixels.width, pixels.height);
  const HDC context = GetDC(nullptr);
  const int rows = GetDIBits(context, bitmap, 0, static_cast<UINT>(pixels.height), pixels.values.data(),
                             &info, DIB_RGB_COLORS);
  ReleaseDC(nullptr, context);
  if (rows != pixels.height) return {};
  const std::uint32_t background = static_cast<std::uint32_t>(GetRValue(transparent)) << 16 |
                                   static_cast<std::uint32_t>(GetGValue(transparent)) << 8 |
                                   static_cast<std::uint32_t>(GetBValue(transparent));
  for (std::uint32_t& value : pixels.values) {
    const std::uint32_t colour = value & ~kOpaque;
    value = colour == background ? 0 : colour | kOpaque;
  }
  return pixels;
}

Pixels LoadPixels(int bitmapId, COLORREF transparent) {
  const HANDLE bitmap = LoadImageW(LibraryOf(RT_BITMAP, bitmapId), MAKEINTRESOURCEW(bitmapId), IMAGE_BITMAP,
                                   0, 0, LR_CREATEDIBSECTION);
  if (!bitmap) return {};
  Pixels pixels = ReadPixels(static_cast<HBITMAP>(bitmap), transparent);
  DeleteObject(bitmap);
  return pixels;
}

HBITMAP MakeBitmap(const Pixels& pixels) {
  const BITMAPINFO info = Description(pixels.width, pixels.height);
  void* bits = nullptr;
  const HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  if (bitmap) std::copy(pixels.values.begin(), pixels.values.end(), static_cast<std::uint32_t*>(bits));
  return bitmap;
}

}  // namespace

bool ImageList::Load(std::span<const int> bitmapIds, COLORREF transparent, HWND window) {
  Reset();
  Pixels drawn;
  int size = 0;
  for (const int id : bitmapIds) {
    drawn = LoadPixels(id, transparent);
    if (drawn.height == 0) return false;
    if (size == 0) size = Scaled(drawn.height, window);
    if (drawn.height >= size) break;
  }
  const int images = drawn.width / drawn.height;
  mList = ImageList_Create(size, size, ILC_COLOR32, images, kGrowBy);
  const HBITMAP scaled = MakeBitmap(Resized(drawn, size * images, size));
  const bool added = mList && scaled && ImageList_Add(mList, scaled, nullptr) == 0;
  if (scaled) DeleteObject(scaled);
  if (!added) Reset();
  return added;
}

void ImageList::Reset() {
  if (mList) ImageList_Destroy(mList);
  mList = nullptr;
}

}  // namespace NCommon
