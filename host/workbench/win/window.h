#pragma once
// The thin ground under the program's windows: an object per window, whose messages it gets.

#include <windows.h>

#include <array>
#include <functional>
#include <string>

#include "host/configuration/document.h"

namespace NWorkbench {

/// Deletes itself never: whoever made it owns it. Destroying it destroys the window.
class Window {
 public:
  Window() = default;
  virtual ~Window();
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  /// Null before it is made and after it was destroyed.
  HWND Handle() const { return mHandle; }

  /// A message of the queue before it is dispatched. True: nothing more is to be done.
  virtual bool Translate(MSG&) { return false; }

  /// Gets the words of what a window throws while it handles a message.
  static void ReportFaultsTo(std::function<void(const std::string&)> report);

 protected:
  struct Form {
    const wchar_t* className = L"";
    const wchar_t* title = L"";
    DWORD style = 0;
    DWORD extendedStyle = 0;
    HWND parent = nullptr;
    RECT place = {CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT};  // left, top, width, height
    HBRUSH background = nullptr;
  };

  /// Throws std::runtime_error: the system refuses.
  void Make(const Form& form);

  virtual LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    return Default(message, wParam, lParam);
  }
  virtual LRESULT Default(UINT message, WPARAM wParam, LPARAM lParam) {
    return DefWindowProcW(mHandle, message, wParam, lParam);
  }

 private:
  static LRESULT CALLBACK Receive(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT Guarded(UINT message, WPARAM wParam, LPARAM lParam);

  HWND mHandle = nullptr;
};

/// A window inside the main one.
class ChildWindow : public Window {
 public:
  ~ChildWindow() override;
  /// The commands of the main window that this one has taken: true.
  virtual bool OnCommand(int) { return false; }

  /// Brings it to the front with the focus.
  void Activate();
  /// Hides it; the next one gets the focus.
  void PutAway();
  /// Texts and what is shown have changed: language, number base, blocks.
  virtual void Refresh() {}

 protected:
  /// `client` is the MDI client. `place` has the form left, top, width, height in its coordinates.
  void MakeChild(HWND client, const wchar_t* className, const wchar_t* title, RECT place,
                 bool visible = true);
  LRESULT Default(UINT message, WPARAM wParam, LPARAM lParam) override;
};

/// The icon of the program's file; `kind` is ICON_SMALL or ICON_BIG.
void SetProgramIcon(HWND window, WPARAM kind);
/// Pixels for a length at 96 dpi, and the other way round.
int Scaled(int length);
int Unscaled(int length);
/// What windows may cover of the screen that a window is on; null: of the first one.
RECT WorkArea(HWND window);
/// The font of the system's dialogs, for as long as the program runs.
HFONT DialogFont();
/// A control with the dialog font.
HWND MakeControl(HWND parent, const wchar_t* className, const wchar_t* text, DWORD style, int id);
std::wstring TextOf(HWND control);
/// Where a window is when it is neither maximised nor minimised, as configurations keep it: for 96 dpi.
NConfiguration::Window PlaceOf(HWND window);
/// Puts it there and shows it, open or not. A place without a size is none, and one outside all screens gives
/// the size alone.
void PutAt(HWND window, const NConfiguration::Window& place);

/// A message box over the main window; the answer.
int Ask(HWND owner, const std::wstring& text, UINT kind);
/// A question with words of its own on its three buttons; the answers are IDYES, IDNO and IDCANCEL.
int AskWith(HWND owner, const std::wstring& text, std::array<const wchar_t*, 3> buttons);

}  // namespace NWorkbench
