#include "common/win/dialog.h"

#include "com/module_scope.h"
#include "common/placement.h"
#include "common/win/dialog_template.h"
#include "common/win/guard.h"

namespace NCommon {
namespace {

HINSTANCE Instance() { return static_cast<HINSTANCE>(NCom::ModuleHandle()); }

// Messages whose answer a dialog procedure returns itself.
bool AnswersDirectly(UINT message) {
  return message == WM_CTLCOLORDLG || message == WM_CTLCOLOREDIT || message == WM_CTLCOLORLISTBOX ||
         message == WM_CTLCOLORSTATIC || message == WM_CTLCOLORBTN || message == WM_COMPAREITEM ||
         message == WM_VKEYTOITEM || message == WM_CHARTOITEM || message == WM_QUERYDRAGICON;
}

// Puts a dialog over the middle of its owner, where it can be seen.
void CentreOverOwner(HWND window) {
  const HWND owner = GetWindow(window, GW_OWNER);
  RECT over = {};
  RECT own = {};
  MONITORINFO monitor = {};
  monitor.cbSize = sizeof(monitor);
  GetMonitorInfoW(MonitorFromWindow(owner ? owner : window, MONITOR_DEFAULTTONEAREST), &monitor);
  const RECT& work = monitor.rcWork;
  if (!owner || IsIconic(owner) || !GetWindowRect(owner, &over)) over = work;
  GetWindowRect(window, &own);
  const int left = (over.left + over.right - (own.right - own.left)) / 2;
  const int top = (over.top + over.bottom - (own.bottom - own.top)) / 2;
  const Area place =
      MovedInto({left, top, left + own.right - own.left, top + own.bottom - own.top},
                {static_cast<std::int32_t>(work.left), static_cast<std::int32_t>(work.top),
                 static_cast<std::int32_t>(work.right), static_cast<std::int32_t>(work.bottom)});
  SetWindowPos(window, nullptr, place.left, place.top, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

// A combo box is as high as its font makes it, whatever the template says; the fields that it stands among
// are 14 units high.
void MakeCombosAsHighAsFields(HWND window) {
  RECT field = {0, 0, 0, 14};
  MapDialogRect(window, &field);
  for (HWND control = GetWindow(window, GW_CHILD); control; control = GetWindow(control, GW_HWNDNEXT)) {
    wchar_t name[32] = {};
    GetClassNameW(control, name, 32);
    if (lstrcmpiW(name, L"ComboBox") != 0) continue;
    RECT area = {};
    GetWindowRect(control, &area);
    constexpr auto kFieldItself = static_cast<WPARAM>(-1);
    const LRESULT height = SendMessageW(control, CB_GETITEMHEIGHT, kFieldItself, 0);
    SendMessageW(control, CB_SETITEMHEIGHT, kFieldItself, height + field.bottom - (area.bottom - area.top));
  }
}

}  // namespace

Dialog::~Dialog() { Destroy(); }

bool Dialog::Create(HWND parent) {
  Destroy();
  const std::vector<std::byte> description = LoadDialogTemplate(mTemplateId);
  if (description.empty()) return false;
  mModal = false;
  mInitialised = false;
  CreateDialogIndirectParamW(Instance(), reinterpret_cast<const DLGTEMPLATE*>(description.data()), parent,
                             Procedure, reinterpret_cast<LPARAM>(this));
  if (!mInitialised) Destroy();
  return mWindow != nullptr;
}

void Dialog::Destroy() {
  if (mWindow) DestroyWindow(mWindow);
}

INT_PTR Dialog::RunModal(HWND owner) {
  Destroy();
  const std::vector<std::byte> description = LoadDialogTemplate(mTemplateId);
  if (description.empty()) return -1;
  mModal = true;
  mInitialised = false;
  return DialogBoxIndirectParamW(Instance(), reinterpret_cast<const DLGTEMPLATE*>(description.data()), owner,
                                 Procedure, reinterpret_cast<LPARAM>(this));
}

void Dialog::End(INT_PTR result) {
  if (mWindow) EndDialog(mWindow, result);
}

std::wstring Dialog::ControlText(int id) const {
  const HWND control = Control(id);
  std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(control)), L'\0');
  const int size = GetWindowTextW(control, text.data(), static_cast<int>(text.size()) + 1);
  text.resize(static_cast<std::size_t>(size));
  return text;
}

void Dialog::SetControlText(int id, const std::wstring& text) { SetDlgItemTextW(mWindow, id, text.c_str()); }

INT_PTR CALLBACK Dialog::Procedure(HWND window, UINT message, WPARAM wide, LPARAM lng) {
  return SystemEntry<INT_PTR>(FALSE, [&]() -> INT_PTR {
    if (message == WM_INITDIALOG) {
      SetWindowLongPtrW(window, DWLP_USER, lng);
      return reinterpret_cast<Dialog*>(lng)->Init(window);
    }
    auto* dialog = reinterpret_cast<Dialog*>(GetWindowLongPtrW(window, DWLP_USER));
    if (!dialog) return FALSE;
    if (message == WM_NCDESTROY) {
      SetWindowLongPtrW(window, DWLP_USER, 0);
      dialog->mWindow = nullptr;
      return FALSE;
    }
    const std::optional<LRESULT> answer = dialog->Handle(message, wide, lng);
    if (!answer) return FALSE;
    if (AnswersDirectly(message)) return *answer;
    SetWindowLongPtrW(window, DWLP_MSGRESULT, *answer);
    return TRUE;
  });
}

bool Dialog::Init(HWND window) {
  mWindow = window;
  try {
    MakeCombosAsHighAsFields(window);
    if (mModal) CentreOverOwner(window);
    const bool systemSetsFocus = OnInit();
    mInitialised = true;
    return systemSetsFocus;
  } catch (...) {
    if (mModal) EndDialog(window, -1);
    return false;
  }
}

std::optional<LRESULT> Dialog::Handle(UINT message, WPARAM wide, LPARAM lng) {
  switch (message) {
    case WM_COMMAND: {
      const int id = LOWORD(wide);
      if (OnCommand(id, HIWORD(wide))) return 0;
      if (mModal && (id == IDOK || id == IDCANCEL)) End(id);
      return std::nullopt;
    }
    case WM_NOTIFY:
      return OnNotify(*reinterpret_cast<NMHDR*>(lng));
    case WM_SIZE:
      if (wide != SIZE_MINIMIZED) OnSize(LOWORD(lng), HIWORD(lng));
      return OnMessage(message, wide, lng);
    case WM_TIMER:
      OnTimer(wide);
      return 0;
    case WM_DESTROY:
      OnDestroy();
      return std::nullopt;
    default:
      return OnMessage(message, wide, lng);
  }
}

}  // namespace NCommon
