#include "tools/windows/picture.h"

#include <fstream>

namespace NTools {

bool SavePicture(const RECT& area, const std::filesystem::path& file) {
  BITMAPINFOHEADER header{};
  header.biSize = sizeof header;
  header.biWidth = area.right - area.left;
  header.biHeight = area.bottom - area.top;
  header.biPlanes = 1;
  header.biBitCount = 24;
  const int size = (header.biWidth * 3 + 3) / 4 * 4 * header.biHeight;
  const HDC screen = GetDC(nullptr);
  const HDC memory = CreateCompatibleDC(screen);
  void* bits = nullptr;
  const HBITMAP bitmap =
      CreateDIBSection(memory, reinterpret_cast<BITMAPINFO*>(&header), DIB_RGB_COLORS, &bits, nullptr, 0);
  const HGDIOBJ old = SelectObject(memory, bitmap);
  BitBlt(memory, 0, 0, header.biWidth, header.biHeight, screen, area.left, area.top, SRCCOPY);
  GdiFlush();
  BITMAPFILEHEADER fileHeader{};
  fileHeader.bfType = 0x4D42;
  fileHeader.bfOffBits = sizeof fileHeader + sizeof header;
  fileHeader.bfSize = fileHeader.bfOffBits + static_cast<DWORD>(size);
  std::ofstream stream(file, std::ios::binary);
  stream.write(reinterpret_cast<const char*>(&fileHeader), sizeof fileHeader);
  stream.write(reinterpret_cast<const char*>(&header), sizeof header);
  stream.write(static_cast<const char*>(bits), size);
  SelectObject(memory, old);
  DeleteObject(bitmap);
  DeleteDC(memory);
  ReleaseDC(nullptr, screen);
  return static_cast<bool>(stream.flush());
}

}  // namespace NTools
