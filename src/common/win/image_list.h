#pragma once

#include <windows.h>

#include <commctrl.h>

#include <span>

namespace NCommon {

/// Owner of an image list.
class ImageList {
 public:
  ImageList() = default;
  ~ImageList() { Reset(); }
  ImageList(const ImageList&) = delete;
  ImageList& operator=(const ImageList&) = delete;

  /// Takes square images that lie side by side in bitmaps of the module, the same ones in sizes from small to
  /// large, for a window: where the smallest are of 16 pixels, images of 24 are taken at 144 dpi, from the
  /// bitmap that has them or else resized. Pixels of the transparent colour are not painted. False: a bitmap
  /// is missing.
  bool Load(std::span<const int> bitmapIds, COLORREF transparent, HWND window);
  void Reset();
  HIMAGELIST Get() const { return mList; }

 private:
  HIMAGELIST mList = nullptr;
};

}  // namespace NCommon
