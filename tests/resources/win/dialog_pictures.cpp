// dialog_pictures LIBRARY FOLDER: shows each dialog of a library of resources and writes a picture of it,
// NUMBER.bmp. It needs a display: tools/dialog-pictures gives it one.
#include <cstdio>

#include "com/module_scope.h"
#include "dialogs_of_library.h"

namespace {

// A dialog that is a child is seen only where its parent is.
void Paint(HWND window) {
  if (GetWindowLongW(window, GWL_STYLE) & WS_CHILD) ShowWindow(GetParent(window), SW_SHOW);
  ShowWindow(window, SW_SHOW);
  UpdateWindow(window);
  const DWORD end = GetTickCount() + 200;
  while (GetTickCount() < end) {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    Sleep(10);
  }
}

bool SavePicture(HWND window, const std::string& file) {
  RECT place;
  GetWindowRect(window, &place);
  BITMAPINFOHEADER header{};
  header.biSize = sizeof header;
  header.biWidth = place.right - place.left;
  header.biHeight = place.bottom - place.top;
  header.biPlanes = 1;
  header.biBitCount = 24;
  const std::size_t size = static_cast<std::size_t>((header.biWidth * 3 + 3) / 4 * 4 * header.biHeight);
  const HDC screen = GetDC(nullptr);
  const HDC memory = CreateCompatibleDC(screen);
  void* bits = nullptr;
  const HBITMAP bitmap =
      CreateDIBSection(memory, reinterpret_cast<BITMAPINFO*>(&header), DIB_RGB_COLORS, &bits, nullptr, 0);
  const HGDIOBJ old = SelectObject(memory, bitmap);
  BitBlt(memory, 0, 0, header.biWidth, header.biHeight, screen, place.left, place.top, SRCCOPY);
  GdiFlush();
  BITMAPFILEHEADER fileHeader{};
  fileHeader.bfType = 0x4D42;
  fileHeader.bfOffBits = sizeof fileHeader + sizeof header;
  fileHeader.bfSize = static_cast<DWORD>(fileHeader.bfOffBits + size);
  std::FILE* stream = std::fopen(file.c_str(), "wb");
  const bool written = stream && std::fwrite(&fileHeader, sizeof fileHeader, 1, stream) == 1 &&
                       std::fwrite(&header, sizeof header, 1, stream) == 1 &&
                       std::fwrite(bits, size, 1, stream) == 1;
  if (stream) std::fclose(stream);
  SelectObject(memory, old);
  DeleteObject(bitmap);
  DeleteDC(memory);
  ReleaseDC(nullptr, screen);
  return written;
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 3) {
    std::fputs("usage: dialog_pictures LIBRARY FOLDER\n", stderr);
    return 2;
  }
  SetProcessDPIAware();  // dialogs as large as the display asks for
  NCom::SetModuleHandle(GetModuleHandleW(nullptr));
  const HMODULE library = LoadLibraryExA(arguments[1], nullptr, LOAD_LIBRARY_AS_DATAFILE);
  if (!library) {
    std::fprintf(stderr, "dialog_pictures: '%s' cannot be loaded\n", arguments[1]);
    return 1;
  }
  for (const auto& dialog : NResourcesTest::DialogsOf(library)) {
    Paint(dialog.Handle());
    const std::string file = std::string(arguments[2]) + "/" + std::to_string(dialog.id) + ".bmp";
    if (!SavePicture(dialog.Handle(), file)) {
      std::fprintf(stderr, "dialog_pictures: '%s' cannot be written\n", file.c_str());
      return 1;
    }
    ShowWindow(dialog.Handle(), SW_HIDE);
  }
  return 0;
}
