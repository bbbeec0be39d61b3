#include "editors/win/item_editor.h"

#include <algorithm>
#include <string_view>

#include "common/text.h"
#include "common/win/help.h"
#include "editors/win/data_composer_dialog.h"
#include "resources/text.h"

namespace NEditors {
namespace {

/// Sent to itself: a list has not yet shown what was picked in it.
constexpr UINT kShowAgain = WM_APP;

/// Where a field is shown. The first of a key that the dialog has is the field's.
constexpr struct {
  std::string_view key;
  int control;
} kControls[] = {
    {"NodeID", IDC_EDIT_NODE_ID},           {"COBID", IDC_EDIT_CAN_ID},
    {"COBIDTx", IDC_EDIT_SDO_TX_ID},        {"COBIDRx", IDC_EDIT_SDO_RX_ID},
    {"AutoCANID", IDC_EDIT_SDO_ADJUST_IDS}, {"SendCycle", IDC_EDIT_CYCLE},
    {"SendDelay", IDC_EDIT_DELAY},          {"NMTState", IDC_EDIT_NMT_STATE},
    {"NMTState", IDC_EDIT_NMT_COMMAND},     {"ToggleBitStartValue", IDC_EDIT_TOGGLE},
    {"ErrCode", IDC_EDIT_ERROR_CODE},       {"Errreg", IDC_EDIT_ERROR_REGISTER},
    {"ManSpec1", IDC_EDIT_BYTE_1},          {"ManSpec2", IDC_EDIT_BYTE_2},
    {"ManSpec3", IDC_EDIT_BYTE_3},          {"ManSpec4", IDC_EDIT_BYTE_4},
    {"ManSpec5", IDC_EDIT_BYTE_5},          {"Index", IDC_EDIT_SDO_INDEX},
    {"SubIndex", IDC_EDIT_SDO_SUBINDEX},    {"Upload", IDC_EDIT_SDO_UPLOAD},
    {"BlockTransfer", IDC_EDIT_SDO_BLOCK},  {"Data", IDC_EDIT_DATA},
    {"AutoSize", IDC_EDIT_ADJUST_LENGTH},   {"DLC", IDC_EDIT_DLC},
    {"ObjectSize", IDC_EDIT_SDO_SIZE},      {"PauseMilliSec", IDC_EDIT_PAUSE},
    {"StartFlag", IDC_EDIT_TX_START},
};

/// The edit field of a list, or the field itself.
HWND EntryOf(HWND control) {
  COMBOBOXINFO parts = {};
  parts.cbSize = sizeof parts;
  const bool isList = SendMessageW(control, CB_GETCOMBOBOXINFO, 0, reinterpret_cast<LPARAM>(&parts)) != 0;
  return isList && parts.hwndItem != nullptr ? parts.hwndItem : control;
}

/// Makes the open list as wide as its texts.
void FitListWidth(HWND list, const std::vector<FieldChoice>& choices) {
  const HDC device = GetDC(list);
  const HGDIOBJ font = reinterpret_cast<HGDIOBJ>(SendMessageW(list, WM_GETFONT, 0, 0));
  const HGDIOBJ before = SelectObject(device, font);
  LONG widest = 0;
  for (const FieldChoice& choice : choices) {
    const std::wstring text = NCommon::ToWide(choice.text);
    SIZE size = {};
    GetTextExtentPoint32W(device, text.c_str(), static_cast<int>(text.size()), &size);
    widest = std::max(widest, size.cx);
  }
  SelectObject(device, before);
  ReleaseDC(list, device);
  const int edges = GetSystemMetrics(SM_CXVSCROLL) + 4 * GetSystemMetrics(SM_CXEDGE);
  SendMessageW(list, CB_SETDROPPEDWIDTH, static_cast<WPARAM>(widest + edges), 0);
}

}  // namespace

ItemEditor::ItemEditor(int templateId, NCanopen::ZMsgItemInfo& item, FormContext context)
    : Dialog(templateId),
      mItem(item),
      mHexadecimal(context.hexadecimal),
      mForm(item, std::move(context)),
      mChoices(mForm.Fields().size()) {}

int ItemEditor::ControlOf(std::size_t field) const {
  for (const auto& [key, control] : kControls) {
    if (key == mForm.Fields()[field].key && Control(control) != nullptr) return control;
  }
  return 0;
}

bool ItemEditor::OnInit() {
  ShowBases();
  Exchange(Direction::Load);
  const HWND first = GetNextDlgTabItem(Window(), nullptr, FALSE);
  SetFocus(first);
  SendMessageW(EntryOf(first), EM_SETSEL, 0, -1);
  return false;
}

/// What the numbers of a field are written in, where it follows the host's display.
void ItemEditor::ShowBases() {
  const std::wstring base = NResources::LoadText(mHexadecimal ? IDS_BASE_HEX : IDS_BASE_DEC);
  for (const auto& entry : kControls) {
    if (Control(BASE_OF(entry.control)) != nullptr) SetControlText(BASE_OF(entry.control), base);
  }
}

bool ItemEditor::Check(std::wstring& message, int& control) const {
  const auto fault = mForm.Check();
  if (!fault) return true;
  message = fault->message;
  control = ControlOf(fault->field);
  return false;
}

/// The form follows every keystroke, so there is nothing to collect here.
bool ItemEditor::Exchange(Direction direction) {
  if (direction == Direction::Load) {
    FillLists();
    Show();
    return true;
  }
  std::wstring message;
  int control = 0;
  if (Check(message, control)) return !mForm.Store(mItem);
  NCommon::ShowBalloonAt(mBalloon, EntryOf(Control(control)), message);
  return false;
}

void ItemEditor::ShowField(std::size_t field) {
  const FormField& shown = mForm.Field(field);
  const int id = ControlOf(field);
  const HWND control = Control(id);
  switch (mForm.Fields()[field].control) {
    case FieldControl::CheckBox:
      CheckDlgButton(Window(), id, shown.checked ? BST_CHECKED : BST_UNCHECKED);
      break;
    case FieldControl::Radio:
      CheckRadioButton(Window(), IDC_EDIT_TX_START, IDC_EDIT_TX_STOP,
                       shown.checked ? IDC_EDIT_TX_START : IDC_EDIT_TX_STOP);
      break;
    case FieldControl::Data:
      EnableWindow(Control(IDC_EDIT_COMPOSE), shown.enabled);
      [[fallthrough]];
    case FieldControl::Number:
    case FieldControl::List:
      // A field that holds the text already keeps its caret.
      if (const std::wstring text = NCommon::ToWide(shown.text); ControlText(id) != text)
        SetControlText(id, text);
      SendMessageW(EntryOf(control), EM_SETREADONLY, shown.readOnly ? TRUE : FALSE, 0);
      break;
  }
  EnableWindow(control, shown.enabled);
}

void ItemEditor::ShowPreview() {
  if (Control(IDC_EDIT_FRAME) == nullptr) return;
  const auto frame = mForm.Preview();
  SetControlText(IDC_EDIT_FRAME, frame ? NCommon::ToWide(FrameText(*frame)) : std::wstring());
}

void ItemEditor::Show() {
  mShowing = true;
  for (std::size_t field = 0; field < mForm.Fields().size(); ++field) ShowField(field);
  ShowPreview();
  mShowing = false;
}

void ItemEditor::FillList(std::size_t field) {
  const HWND list = Control(ControlOf(field));
  mChoices[field] = mForm.ChoicesOf(field);
  const std::wstring entered = ControlText(ControlOf(field));
  SendMessageW(list, WM_SETREDRAW, FALSE, 0);
  SendMessageW(list, CB_RESETCONTENT, 0, 0);
  for (const FieldChoice& choice : mChoices[field]) {
    const std::wstring text = NCommon::ToWide(choice.text);
    SendMessageW(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
  }
  SetWindowTextW(list, entered.c_str());
  SendMessageW(list, WM_SETREDRAW, TRUE, 0);
  FitListWidth(list, mChoices[field]);
}

/// The lists of all fields, or once the node is another, of those that depend on it.
void ItemEditor::FillLists() {
  const auto node = mForm.Find("NodeID");
  const std::string entered = node ? mForm.Field(*node).text : std::string("-");
  if (entered == mListedNode) return;
  const bool first = mListedNode.empty();
  mListedNode = entered;
  mShowing = true;
  for (std::size_t field = 0; field < mForm.Fields().size(); ++field) {
    if (mForm.Fields()[field].control != FieldControl::List) continue;
    if (first || DependsOnNode(mForm.Fields()[field].choices)) FillList(field);
  }
  mShowing = false;
}

bool ItemEditor::OnCommand(int id, int notification) {
  if (mShowing) return true;
  if (id == IDOK) {
    if (Exchange(Direction::Save)) End(IDOK);
    return true;
  }
  if (id == IDHELP) {
    NCommon::OpenHelp(Window());
    return true;
  }
  if (id == IDC_EDIT_COMPOSE) {
    Compose();
    return true;
  }
  const int shown = id == IDC_EDIT_TX_STOP ? IDC_EDIT_TX_START : id;
  for (std::size_t field = 0; field < mForm.Fields().size(); ++field) {
    if (ControlOf(field) == shown) return OnFieldCommand(field, notification);
  }
  return false;
}

bool ItemEditor::OnFieldCommand(std::size_t field, int notification) {
  const int id = ControlOf(field);
  switch (mForm.Fields()[field].control) {
    case FieldControl::CheckBox:
    case FieldControl::Radio:
      if (notification != BN_CLICKED) return true;
      mForm.SetChecked(field, IsDlgButtonChecked(Window(), id) == BST_CHECKED);
      break;
    case FieldControl::List:
      if (notification == CBN_SELCHANGE) OnChosen(field);
      if (notification != CBN_EDITCHANGE) return true;
      mForm.SetText(field, NCommon::ToItemText(ControlText(id)));
      break;
    case FieldControl::Number:
    case FieldControl::Data:
      if (notification != EN_CHANGE) return true;
      mForm.SetText(field, NCommon::ToItemText(ControlText(id)));
      break;
  }
  FillLists();
  Show();
  return true;
}

void ItemEditor::OnChosen(std::size_t field) {
  const LRESULT row = SendMessageW(Control(ControlOf(field)), CB_GETCURSEL, 0, 0);
  if (row < 0 || static_cast<std::size_t>(row) >= mChoices[field].size()) return;
  mForm.Choose(field, mChoices[field][static_cast<std::size_t>(row)]);
  PostMessageW(Window(), kShowAgain, 0, 0);
}

std::optional<LRESULT> ItemEditor::OnMessage(UINT message, WPARAM, LPARAM) {
  if (message != kShowAgain) return std::nullopt;
  FillLists();
  Show();
  return 0;
}

void ItemEditor::Compose() {
  ZMsgDataComposerDlg composer(mForm.Definition(), mForm.Purpose());
  if (const auto definition = composer.Compose(Window())) {
    mForm.SetDefinition(*definition);
    Show();
  }
}

}  // namespace NEditors
