#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace NCommon {

/// A dialog from a template of the module, modal or as a child of a host's window. A class derives from it
/// and overrides what it handles; each of these calls is an entry, so it may throw: what is thrown ends the
/// call alone, in OnInit the dialog.
///
/// The window may go while the object lives, and is destroyed with it at the latest. A class whose OnDestroy
/// uses its members calls Destroy() in its own destructor.
class Dialog {
 public:
  Dialog(const Dialog&) = delete;
  Dialog& operator=(const Dialog&) = delete;

  /// Null while there is none.
  HWND Window() const { return mWindow; }
  HWND Control(int id) const { return GetDlgItem(mWindow, id); }

 protected:
  explicit Dialog(int templateId) : mTemplateId(templateId) {}
  virtual ~Dialog();

  /// Makes the window, not shown unless its template says so. False: it could not be made.
  bool Create(HWND parent);
  void Destroy();
  /// Shows the dialog and returns when it has ended: what End() was given, IDCANCEL when the user left it, -1
  /// when it could not be made. The owner is disabled meanwhile.
  INT_PTR RunModal(HWND owner);
  void End(INT_PTR result);

  std::wstring ControlText(int id) const;
  void SetControlText(int id, const std::wstring& text);

  /// The window is there with its controls. False: the focus was set already.
  virtual bool OnInit() { return true; }
  /// A command of a menu, button or other control. False: not handled; a modal dialog then ends with IDOK and
  /// IDCANCEL.
  virtual bool OnCommand(int /*id*/, int /*notification*/) { return false; }
  /// The answer to a notification; empty: not handled.
  virtual std::optional<LRESULT> OnNotify(NMHDR& /*notification*/) { return std::nullopt; }
  /// New client size in pixels.
  virtual void OnSize(int /*width*/, int /*height*/) {}
  virtual void OnTimer(UINT_PTR /*id*/) {}
  /// The window is about to go, its controls are still there.
  virtual void OnDestroy() {}
  /// Any other message; empty: not handled.
  virtual std::optional<LRESULT> OnMessage(UINT /*message*/, WPARAM /*wide*/, LPARAM /*lng*/) {
    return std::nullopt;
  }

 private:
  static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wide, LPARAM lng);
  bool Init(HWND window);
  std::optional<LRESULT> Handle(UINT message, WPARAM wide, LPARAM lng);

  int mTemplateId;
  HWND mWindow = nullptr;
  bool mModal = false;
  bool mInitialised = false;
};

}  // namespace NCommon
