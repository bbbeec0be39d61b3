#pragma once

#include <string>

#include "sdk/host_application.h"

namespace NCommon {

/// Shows a message to the user and returns when it was seen: through the host where it talks to the user
/// itself (IUserDialogs), else in a message box. The box runs a nested message loop, so callers put their
/// state in order first.
void ShowUserMessage(const std::wstring& text, NSdk::MessageIcon icon);

/// The module's own way to show a message, one per platform: a message box, or standard error where there are
/// no windows.
void ShowOwnMessage(const std::wstring& title, const std::wstring& text, NSdk::MessageIcon icon);

/// Whether the module makes windows here: dialogs, block windows, menus.
bool HasWindows();

}  // namespace NCommon
