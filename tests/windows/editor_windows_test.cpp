// The dialogs of the items, each opened, filled in and ended as a user does.

#include <gtest/gtest.h>

#include "canopen/flow_items.h"
#include "canopen/item_kinds.h"
#include "canopen/message_items.h"
#include "editors/item_editors.h"
#include "resources/resource_ids.h"
#include "tests/windows/window_driver.h"

namespace NTest {
namespace {

constexpr const wchar_t* kDialog = L"#32770";

/// Types a text over what a field holds; of a list into its edit field.
void Type(HWND dialog, int control, const wchar_t* text) {
  const HWND field = GetDlgItem(dialog, control);
  SetWindowTextW(field, text);
  wchar_t name[32] = {};
  GetClassNameW(field, name, 32);
  if (std::wstring(name) == L"ComboBox") {
    SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(control, CBN_EDITCHANGE), reinterpret_cast<LPARAM>(field));
  }
}
std::wstring Text(HWND dialog, int control) { return TextOf(GetDlgItem(dialog, control)); }
void Click(HWND dialog, int control) { SendDlgItemMessageW(dialog, control, BM_CLICK, 0, 0); }
bool IsEnabled(HWND dialog, int control) { return IsWindowEnabled(GetDlgItem(dialog, control)) != FALSE; }

class EditorWindow : public testing::Test {
 protected:
  EditorWindow() { NEditors::InstallItemEditors(); }
  ~EditorWindow() override { NCanopen::SetItemEditors(nullptr); }

  /// Whether the dialog ended with OK.
  bool Edit(NCanopen::ZMsgItemInfo& item, const std::function<void(HWND)>& drive, bool inCyclicList = false) {
    NCanopen::EditContext context;
    context.inCyclicList = inCyclicList;
    bool accepted = false;
    WhileOpen(
        kDialog, [&] { accepted = item.Edit(nullptr, &context); }, drive);
    return accepted;
  }
};

TEST_F(EditorWindow, EveryKindOpensAndIsLeftOrAcceptedUnchanged) {
  for (const NCanopen::ItemKind& kind : NCanopen::ItemKinds()) {
    const auto item = kind.make(nullptr);
    const std::string before = item->GetAttributesText();
    std::wstring title;
    EXPECT_FALSE(Edit(*item, [&](HWND dialog) {
      title = TextOf(dialog);
      Click(dialog, IDCANCEL);
    }));
    EXPECT_FALSE(title.empty()) << kind.name;
    EXPECT_TRUE(Edit(*item, [&](HWND dialog) { Click(dialog, IDOK); })) << kind.name;
    EXPECT_EQ(item->GetAttributesText(), before) << kind.name;
  }
}

TEST_F(EditorWindow, AFaultIsToldAtItsFieldAndNothingIsTaken) {
  NCanopen::ZHBeatItemInfo item(nullptr);
  EXPECT_FALSE(Edit(item, [&](HWND dialog) {
    Type(dialog, IDC_EDIT_NODE_ID, L"12");
    Type(dialog, IDC_EDIT_CAN_ID, L"800");
    Click(dialog, IDOK);
    EXPECT_EQ(TipText(), L"Please enter a value less or equal than 7FF (hex.)");
    EXPECT_EQ(GetParent(GetFocus()), GetDlgItem(dialog, IDC_EDIT_CAN_ID));
  }));
  EXPECT_EQ(item.record.nodeId, 1u);
}

TEST_F(EditorWindow, TimesAreEditedInTheCyclicListOnly) {
  NCanopen::ZSyncItemInfo item(nullptr);
  EXPECT_TRUE(Edit(item, [&](HWND dialog) {
    EXPECT_FALSE(IsEnabled(dialog, IDC_EDIT_CYCLE));
    EXPECT_EQ(Text(dialog, IDC_EDIT_CYCLE) + L"/" + Text(dialog, IDC_EDIT_DELAY), L"-/0");
    Type(dialog, IDC_EDIT_CAN_ID, L"81");
    EXPECT_EQ(Text(dialog, IDC_EDIT_FRAME), L"81  [0] ");
    Click(dialog, IDOK);
  }));
  EXPECT_EQ(item.record.cobId, 0x81u);
  EXPECT_TRUE(Edit(
      item,
      [&](HWND dialog) {
        Type(dialog, IDC_EDIT_CYCLE, L"70");
        Click(dialog, IDOK);
      },
      /*inCyclicList=*/true));
  EXPECT_EQ(item.record.cycle_ms, 70u);
}

TEST_F(EditorWindow, FieldsFollowEachOther) {
  NCanopen::ZSDOItemInfo item(nullptr);
  EXPECT_TRUE(Edit(item, [&](HWND dialog) {
    Type(dialog, IDC_EDIT_NODE_ID, L"10");
    EXPECT_EQ(Text(dialog, IDC_EDIT_SDO_TX_ID) + L"/" + Text(dialog, IDC_EDIT_SDO_RX_ID), L"60A/58A");
    Click(dialog, IDC_EDIT_ADJUST_LENGTH);
    Type(dialog, IDC_EDIT_DATA, L"uint:70000");
    EXPECT_EQ(Text(dialog, IDC_EDIT_SDO_SIZE), L"3");
    EXPECT_EQ(Text(dialog, IDC_EDIT_FRAME), L"60A  [8]  27 00 10 00 70 11 01 00");
    Click(dialog, IDOK);
  }));
  EXPECT_EQ(item.record.cobIdTx, 0x60Au);
  EXPECT_EQ(item.record.objectSize, 3u);
}

TEST_F(EditorWindow, AChoiceFromAListIsTaken) {
  const bool hexadecimal = true;
  NCanopen::ZNMTItemInfo item(&hexadecimal);
  EXPECT_TRUE(Edit(item, [&](HWND dialog) {
    const HWND list = GetDlgItem(dialog, IDC_EDIT_NMT_COMMAND);
    EXPECT_EQ(Text(dialog, BASE_OF(IDC_EDIT_NMT_COMMAND)), L"hex.");
    SendMessageW(list, CB_SETCURSEL, 2, 0);
    SendMessageW(dialog, WM_COMMAND, MAKEWPARAM(IDC_EDIT_NMT_COMMAND, CBN_SELCHANGE),
                 reinterpret_cast<LPARAM>(list));
    PumpFor(20);
    EXPECT_EQ(Text(dialog, IDC_EDIT_NMT_COMMAND), L"80 (Enter pre-operational)");
    Type(dialog, IDC_EDIT_NODE_ID, L"0 (All nodes)");
    EXPECT_EQ(Text(dialog, IDC_EDIT_FRAME), L"0  [2]  80 00");
    Click(dialog, IDOK);
  }));
  EXPECT_EQ(item.record.command, 0x80);
  EXPECT_EQ(item.record.nodeId, 0);
}

TEST_F(EditorWindow, DataIsComposedBehindItsButton) {
  NCanopen::ZPDOItemInfo item(nullptr);
  item.record.data = "uint:4660";
  item.record.dlc = 2;
  EXPECT_TRUE(Edit(item, [&](HWND editor) {
    WhileOpen(
        kDialog, [&] { Click(editor, IDC_EDIT_COMPOSE); },
        [&](HWND composer) {
          EXPECT_EQ(Text(composer, IDC_DATA_VALUE) + L"/" + Text(composer, IDC_DATA_LENGTH), L"4660/2");
          EXPECT_EQ(IsDlgButtonChecked(composer, IDC_DATA_UNSIGNED), BST_CHECKED + 0u);
          EXPECT_FALSE(IsEnabled(composer, IDC_DATA_BROWSE));
          Type(composer, IDC_DATA_LENGTH, L"9");
          Click(composer, IDOK);
          EXPECT_EQ(TipText(), L"Invalid syntax or value range");
          Click(composer, IDC_DATA_ADJUST);
          Click(composer, IDC_DATA_STRING);
          Type(composer, IDC_DATA_VALUE, L"Hello");
          EXPECT_EQ(Text(composer, IDC_DATA_LENGTH), L"5");
          EXPECT_FALSE(IsEnabled(composer, IDC_DATA_LENGTH));
          Click(composer, IDOK);
        });
    EXPECT_EQ(Text(editor, IDC_EDIT_DATA) + L"/" + Text(editor, IDC_EDIT_DLC), L"string:Hello/5");
    Click(editor, IDOK);
  }));
  EXPECT_EQ(item.record.data, "string:Hello");
  EXPECT_EQ(item.record.dlc, 5u);
  EXPECT_EQ(item.record.autoSize, 1u);
}

}  // namespace
}  // namespace NTest
