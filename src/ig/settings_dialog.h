#pragma once

#include "ig/settings.h"
#include "sdk/com_base.h"

namespace NIg {

/// Lets the user edit a block's numbers in the dialog "CANopen IG settings"; `parentWindow` is an HWND, null
/// the active window. S_FALSE, nothing stored: the user left it. E_NOTIMPL: the module has no windows here.
HRESULT EditSettings(void* parentWindow, GeneratorNumbers& numbers);

}  // namespace NIg
