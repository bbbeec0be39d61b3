// dialog_pictures LIBRARY FOLDER: shows each dialog of a library of resources and writes a picture of it,
// NUMBER.bmp. It needs a display: tools/dialog-pictures gives it one.
#include <cstdio>

#include "com/module_scope.h"
#include "tests/resources/win/dialogs_of_library.h"
#include "tools/windows/picture.h"

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
    RECT area = {};
    GetWindowRect(dialog.Handle(), &area);
    if (!NTools::SavePicture(area, file)) {
      std::fprintf(stderr, "dialog_pictures: '%s' cannot be written\n", file.c_str());
      return 1;
    }
    ShowWindow(dialog.Handle(), SW_HIDE);
  }
  return 0;
}
