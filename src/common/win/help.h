#pragma once

#include <windows.h>

namespace NCommon {

/// Opens the user's help. Where its file is missing the user is told where it should be.
void OpenHelp(HWND owner);

}  // namespace NCommon
