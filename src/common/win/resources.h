#pragma once
// Resources of the module: those of the user's language where its library has them, else the module's own.

#include <windows.h>

namespace NCommon {

/// Library that holds a resource of a type (RT_DIALOG, ...). Null stands for the program itself.
HINSTANCE LibraryOf(const wchar_t* type, int id);

/// Destroyed by its owner; null: there is no such menu.
HMENU LoadOwnMenu(int id);

}  // namespace NCommon
