#pragma once

#include <windows.h>

#include <string>

namespace NIg {

/// Puts items, as item_clipboard.h writes them, on the clipboard, and beside them what a text editor pastes.
/// False: the items are not there, for another program holds the clipboard or they are too large.
bool PutOnClipboard(HWND owner, const std::string& items, const std::wstring& text);
/// Whether items lie there.
bool HasClipboardItems();
/// What lies there as items; empty: nothing does. It may come from anywhere.
std::string TakeFromClipboard(HWND owner);

}  // namespace NIg
