#pragma once
// What the module's lists have in common.

#include <windows.h>

#include <commctrl.h>

#include <string>
#include <vector>

namespace NCommon {

/// Appends a column; `width` is in pixels at 96 dpi, `format` is LVCFMT_...
void AddColumn(HWND list, const std::wstring& text, int width, int format = LVCFMT_LEFT);

/// Appends a row with the texts of its cells, and data of its own.
void AddRow(HWND list, const std::vector<std::wstring>& cells, LPARAM data);

/// Gives a row the focus and the selection.
void SelectRow(HWND list, int row);

/// Data of the selected rows, from the top.
std::vector<LPARAM> SelectedData(HWND list);

/// Draws the rows of a virtual list anew, soon. Not the headings, which would take as long again.
void RedrawRows(HWND list);

/// Answers a virtual list that asks for a text.
void AnswerText(LVITEMW& item, const std::wstring& text);

/// Where a menu that is asked for by the keyboard opens, on the screen: at the row with the focus, if it is
/// in view.
POINT KeyboardMenuPlace(HWND list);

}  // namespace NCommon
