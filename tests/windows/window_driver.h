#pragma once
// Drives windows as a user does, by messages.

#include <windows.h>

#include <commctrl.h>

#include <filesystem>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

namespace NTest {

/// Lets messages be handled for a while, or until something is so. False: it never was.
void PumpFor(int duration_ms);
bool PumpUntil(const std::function<bool()>& condition, int timeout_ms = 5000);

/// What this thread has had of the processor until now, to some 10 ms. Other programs do not count, nor does
/// a host that takes the processor away.
double ThreadTime_ms();

/// Window of this thread, of a class ("#32770" is that of dialogs, "#32768" that of menus), that is shown;
/// null: there is none.
HWND FindShown(const wchar_t* className);

/// Runs `open`, which returns when its dialog or menu is closed. Once that is there, `drive` is called with
/// it; it is closed at the latest when `drive` is through.
void WhileOpen(const wchar_t* className, const std::function<void()>& open,
               const std::function<void(HWND)>& drive);

/// Answers the file dialog that `open` shows.
void WithFile(const std::filesystem::path& file, const std::function<void()>& open);

/// Drags from a place in one control to a place in another one of the same dialog, which has the capture.
void Drag(HWND from, POINT start, HWND to, POINT end);

/// Of an entry of a tree.
std::wstring LabelOf(HWND tree, HTREEITEM entry);
/// Selects an entry of a tree by its labels, from the root down, and gives the tree the focus. Null: it is
/// not there.
HTREEITEM Choose(HWND tree, std::initializer_list<const wchar_t*> labels);

std::wstring TextOf(HWND window);
std::wstring CellText(HWND list, int row, int column);
/// Text of the tool tip that is shown; empty: none is.
std::wstring TipText();
/// "5|Operational|1" and the like.
std::wstring RowText(HWND list, int row, int columns);
std::vector<std::wstring> MenuTexts(HMENU menu);

}  // namespace NTest
