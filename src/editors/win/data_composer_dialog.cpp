#include "editors/win/data_composer_dialog.h"

#include <commdlg.h>

#include <array>

#include "common/text.h"
#include "common/user_messages.h"
#include "common/win/file_filter.h"
#include "common/win/help.h"
#include "resources/resource_ids.h"
#include "resources/text.h"

namespace NEditors {
namespace {

constexpr struct {
  int control;
  DataType type;
} kTypes[] = {
    {IDC_DATA_UNSIGNED, kDataUnsigned}, {IDC_DATA_BYTE_ARRAY, kDataByteArray}, {IDC_DATA_SIGNED, kDataSigned},
    {IDC_DATA_STRING, kDataString},     {IDC_DATA_REAL32, kDataFloat},         {IDC_DATA_REAL64, kDataDouble},
    {IDC_DATA_FILE, kDataFile},
};

}  // namespace

ZMsgDataComposerDlg::ZMsgDataComposerDlg(const DataDefinition& definition, const DataPurpose& purpose)
    : Dialog(IDD_DATA_COMPOSER), mComposer(definition, purpose), mFolder(purpose.folder) {}

std::optional<DataDefinition> ZMsgDataComposerDlg::Compose(HWND owner) {
  return RunModal(owner) == IDOK ? mResult : std::nullopt;
}

bool ZMsgDataComposerDlg::OnInit() {
  ShowType();
  Show();
  SetFocus(Control(IDC_DATA_VALUE));
  SendMessageW(Control(IDC_DATA_VALUE), EM_SETSEL, 0, -1);
  return false;
}

void ZMsgDataComposerDlg::ShowType() {
  for (const auto& [control, type] : kTypes) {
    CheckDlgButton(Window(), control, type == mComposer.Type() ? BST_CHECKED : BST_UNCHECKED);
  }
}

/// A field that holds the text already keeps its caret.
void ZMsgDataComposerDlg::Show() {
  mShowing = true;
  const auto show = [this](int control, const std::string& text) {
    const std::wstring wide = NCommon::ToWide(text);
    if (ControlText(control) != wide) SetControlText(control, wide);
  };
  show(IDC_DATA_VALUE, mComposer.Value());
  show(IDC_DATA_LENGTH, mComposer.Size());
  CheckDlgButton(Window(), IDC_DATA_ADJUST, mComposer.IsAutomatic() ? BST_CHECKED : BST_UNCHECKED);
  EnableWindow(Control(IDC_DATA_LENGTH), mComposer.CanTypeSize());
  EnableWindow(Control(IDC_DATA_BROWSE), mComposer.CanBrowse());
  mShowing = false;
}

bool ZMsgDataComposerDlg::OnCommand(int id, int notification) {
  if (mShowing) return true;
  for (const auto& [control, type] : kTypes) {
    if (control != id) continue;
    if (notification == BN_CLICKED && mComposer.Type() != type) {
      mComposer.SetType(type);
      Show();
    }
    return true;
  }
  switch (id) {
    case IDC_DATA_VALUE:
      if (notification != EN_CHANGE) return true;
      mComposer.SetValue(NCommon::ToItemText(ControlText(id)));
      break;
    case IDC_DATA_LENGTH:
      if (notification != EN_CHANGE) return true;
      mComposer.SetSize(NCommon::ToItemText(ControlText(id)));
      return true;
    case IDC_DATA_ADJUST:
      mComposer.SetAutomatic(IsDlgButtonChecked(Window(), id) == BST_CHECKED);
      break;
    case IDC_DATA_BROWSE:
      Browse();
      return true;
    case IDHELP:
      NCommon::OpenHelp(Window());
      return true;
    case IDOK:
      Accept();
      return true;
    default:
      return false;
  }
  Show();
  return true;
}

void ZMsgDataComposerDlg::Browse() {
  std::array<wchar_t, 32768> path = {};  // as long as the system allows
  const std::wstring filter = NCommon::FileFilter(NResources::LoadText(IDS_DATA_FILE_FILTER));
  const std::wstring folder = mFolder.wstring();
  OPENFILENAMEW dialog = {};
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = Window();
  dialog.lpstrFilter = filter.c_str();
  dialog.lpstrFile = path.data();
  dialog.nMaxFile = static_cast<DWORD>(path.size());
  dialog.lpstrInitialDir = folder.empty() ? nullptr : folder.c_str();
  dialog.Flags = OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
  if (GetOpenFileNameW(&dialog) == FALSE) return;
  mComposer.SetFile(path.data());
  ShowType();
  Show();
}

void ZMsgDataComposerDlg::Accept() {
  const ComposerAnswer answer = mComposer.Accept();
  for (const std::wstring& warning : answer.warnings) {
    NCommon::ShowUserMessage(warning, NSdk::kMessageExclamation);
  }
  if (answer.result) {
    mResult = answer.result;
    End(IDOK);
    return;
  }
  const HWND field = Control(answer.focus == ComposerField::Size ? IDC_DATA_LENGTH : IDC_DATA_VALUE);
  if (answer.balloon.empty()) {
    SendMessageW(Window(), WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(field), TRUE);
  } else {
    NCommon::ShowBalloonAt(mBalloon, field, answer.balloon);
  }
}

}  // namespace NEditors
