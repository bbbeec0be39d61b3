// A generator from its insertion to the next opening of its configuration, as a user works with it.

#include <gmock/gmock.h>

#include "host/workbench/win/command_ids.h"
#include "resources/resource_ids.h"
#include "tests/test_folder.h"
#include "tests/windows/window_driver.h"
#include "tests/workbench/win/program.h"

namespace {

using namespace NWorkbenchTest;
using namespace NWorkbench;
using NTest::CellText;
using NTest::Choose;

constexpr int kInsertMenu = 1;
constexpr const wchar_t* kDialog = L"#32770";

std::filesystem::path Configuration(const std::filesystem::path& folder) {
  const std::string plant =
      std::filesystem::absolute(OSTREL_SOURCE_DIR "/examples/plant").generic_string();  // with its drive
  return NTest::WriteFile(
      folder / "whole path.json",
      R"({"format": 1, "variant": "halvard", "language": 1, "numberBase": 16, "channels": [{"number": 1, )"
      R"("bus": "virtual,bitrate=125000", "databases": [")" +
          plant + R"(/plant.dbc"]}], "devices": [{"channel": 1, "node": 5, "description": ")" + plant +
          R"(/valves.dcf"}]})");
}

void OpenBlock(Program& program, const wchar_t* group, const wchar_t* subgroup, const wchar_t* name) {
  const HWND tree = FindWindowExW(FindWindowExW(FindWindowExW(program.Main(), nullptr, L"MDIClient", nullptr),
                                                nullptr, L"OstrelSetup", nullptr),
                                  nullptr, WC_TREEVIEWW, nullptr);
  const HTREEITEM entry = subgroup ? Choose(tree, {group, subgroup, name}) : Choose(tree, {group, name});
  ASSERT_TRUE(entry) << testing::PrintToString(program.SetupLines());
  program.Command(kBlockOpen);
}

void DragTemplate(HWND tree, std::initializer_list<const wchar_t*> labels, HWND list) {
  RECT label = {};
  const HTREEITEM entry = Choose(tree, labels);
  ASSERT_TRUE(entry);
  TreeView_EnsureVisible(tree, entry);
  TreeView_GetItemRect(tree, entry, &label, TRUE);
  NTest::Drag(tree, {label.left + 5, label.top + 5}, list, {60, 60});
}

/// Enter on the first row; `texts` are typed into the fields of the editor.
void Edit(HWND list, std::initializer_list<std::pair<int, const wchar_t*>> texts, int check = 0) {
  NTest::WhileOpen(
      kDialog, [&] { SendMessageW(list, WM_KEYDOWN, VK_RETURN, 1); },
      [&](HWND editor) {
        if (check != 0) SendDlgItemMessageW(editor, check, BM_CLICK, 0, 0);
        for (const auto& [field, text] : texts) {
          SetDlgItemTextW(editor, field, text);
          SendMessageW(editor, WM_COMMAND, static_cast<WPARAM>(MAKELONG(field, CBN_EDITCHANGE)), 0);
        }
        SendMessageW(editor, WM_COMMAND, IDOK, 0);
      });
}

void Compose(Program& program, const std::filesystem::path& sequence) {
  const HWND tree = program.Control(IDC_IG_TEMPLATES);
  SendMessageW(program.Control(IDC_IG_REFRESH), BM_CLICK, 0, 0);
  DragTemplate(tree, {L"Message templates", L"PDO", L"Node 5, Valves", L"N5_TPDO2 (285)"},
               program.Control(IDC_IG_CYCLIC));
  DragTemplate(tree, {L"Message templates", L"SDO", L"Node 5, Valves"}, program.Control(IDC_IG_SEQUENCE));
  Edit(program.Control(IDC_IG_CYCLIC),
       {{IDC_EDIT_DATA, L"uint:0xBEEF"}, {IDC_EDIT_DLC, L"2"}, {IDC_EDIT_CYCLE, L"20"}});
  Edit(program.Control(IDC_IG_SEQUENCE), {{IDC_EDIT_SDO_INDEX, L"1018"}, {IDC_EDIT_SDO_SUBINDEX, L"1"}},
       IDC_EDIT_SDO_UPLOAD);
  NTest::WithFile(sequence, [&] { SendMessageW(program.Control(IDC_IG_SAVE), BM_CLICK, 0, 0); });
}

void ExpectComposed(const Program& program) {
  EXPECT_EQ(CellText(program.Control(IDC_IG_SEQUENCE), 0, 1),
            L"Upload, Node-ID 5, COBID 605, Object 1018sub1");
  EXPECT_EQ(NTest::RowText(program.Control(IDC_IG_CYCLIC), 0, 4),
            L"PDO|20 ms|0 ms|Node-ID 5, COBID 285, DLC 2, Data uint:0xBEEF");
}

TEST(WorkbenchGenerator, ComposedRunSavedAndFoundAgain) {
  const NTest::TestFolder folder;
  const auto file = Configuration(folder);
  {
    Program program(file);
    ASSERT_TRUE(program.CommandOfMenu(kInsertMenu, L"Generator"));
    ASSERT_TRUE(program.CommandOfMenu(kInsertMenu, L"Scanner"));
    ASSERT_TRUE(program.Wait([&] { return program.SetupLines().size() == 5; }));
    OpenBlock(program, L"Measurement setup", nullptr, L"CANopen Scanner");
    OpenBlock(program, L"Simulation setup", L"Network CAN 1", L"CANopen Interactive Generator Block");
    ASSERT_TRUE(program.Control(IDC_IG_TEMPLATES));
    Compose(program, folder / "kept.seq");
    ExpectComposed(program);

    program.Command(kMeasureStart);
    const auto isEnabled = [&](int id) { return IsWindowEnabled(program.Control(id)) != FALSE; };
    ASSERT_TRUE(program.Wait([&] { return isEnabled(IDC_IG_START) && isEnabled(IDC_IG_EXECUTE); }));
    SendMessageW(program.Control(IDC_IG_START), BM_CLICK, 0, 0);
    SendMessageW(program.Control(IDC_IG_EXECUTE), BM_CLICK, 0, 0);
    EXPECT_TRUE(program.Wait([&] {
      return CellText(program.Control(IDC_IG_SEQUENCE), 0, 2) == L"SDO done, 4 bytes" &&
             CellText(program.Control(IDC_IG_CYCLIC), 0, 4) == L"Sent" && isEnabled(IDC_IG_SEQUENCE);
    }));
    EXPECT_TRUE(program.Wait([&] { return program.TraceRows() > 5; }));
    EXPECT_TRUE(program.Wait([&] { return ListView_GetItemCount(program.Control(IDC_SCAN_NODES)) > 0; }));
    EXPECT_EQ(CellText(program.Control(IDC_SCAN_NODES), 0, 0), L"0x5");
    program.Command(kMeasureStop);
    EXPECT_TRUE(program.Wait([&] { return !isEnabled(IDC_IG_START) && isEnabled(IDC_IG_CYCLIC); }));
    program.Command(kFileSave);
    EXPECT_THAT(program.Messages(), testing::IsEmpty());
  }
  Program again(file);
  EXPECT_TRUE(again.Wait([&] { return ListView_GetItemCount(again.Control(IDC_IG_SEQUENCE)) == 1; }));
  ExpectComposed(again);
}

// Lists that nobody saved are not lost with the program.
TEST(WorkbenchGenerator, AsksForUnsavedListsBeforeItGoes) {
  const NTest::TestFolder folder;
  const auto file = Configuration(folder);
  Program program(file);
  ASSERT_TRUE(program.CommandOfMenu(kInsertMenu, L"Generator"));
  program.Command(kFileSave);
  ASSERT_TRUE(program.Wait([&] { return program.SetupLines().size() == 4; }));
  OpenBlock(program, L"Simulation setup", L"Network CAN 1", L"CANopen Interactive Generator Block");
  DragTemplate(program.Control(IDC_IG_TEMPLATES), {L"Flow control", L"PAUSE"},
               program.Control(IDC_IG_SEQUENCE));
  program.Command(kFileSave);
  Answers cancel(IDCANCEL);
  SendMessageW(program.Main(), WM_CLOSE, 0, 0);
  EXPECT_FALSE(program.IsClosed());
  EXPECT_THAT(cancel.Texts(), testing::HasSubstr(L"have changes that are not saved"));
}

}  // namespace
