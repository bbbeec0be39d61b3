#include <windows.h>

#include "common/user_messages.h"

namespace NCommon {
namespace {

UINT BoxIcon(NSdk::MessageIcon icon) {
  switch (icon) {
    case NSdk::kMessageExclamation:
      return MB_ICONEXCLAMATION;
    case NSdk::kMessageError:
      return MB_ICONERROR;
    case NSdk::kMessagePlain:
      break;
  }
  return 0;
}

}  // namespace

void ShowOwnMessage(const std::wstring& title, const std::wstring& text, NSdk::MessageIcon icon) {
  MessageBoxW(GetActiveWindow(), text.c_str(), title.c_str(), MB_OK | BoxIcon(icon));
}

bool HasWindows() { return true; }

}  // namespace NCommon
