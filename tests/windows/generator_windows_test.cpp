// The generator's window as its user drives it.

#include <gmock/gmock.h>

#include "tests/windows/generator_window.h"

namespace NTest {
namespace {

constexpr const wchar_t* kDialog = L"#32770";
constexpr const wchar_t* kMenu = L"#32768";
constexpr POINT kInRows = {60, 60};

TEST_F(GeneratorWindowTest, ShowsTemplatesListsAndColumns) {
  EXPECT_TRUE(Choose({L"Message templates", L"PDO", L"Node 5, Drive"}));
  EXPECT_TRUE(Choose({L"Flow control", L"CYCLETX"}));
  std::wstring headings;
  for (const HWND list : {Sequence(), Cyclic()}) {
    for (int column = 0; column < Header_GetItemCount(ListView_GetHeader(list)); ++column) {
      wchar_t text[64] = {};
      LVCOLUMNW heading = {};
      heading.mask = LVCF_TEXT | LVCF_WIDTH;
      heading.pszText = text;
      heading.cchTextMax = 64;
      SendMessageW(list, LVM_GETCOLUMNW, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&heading));
      headings += std::wstring(text) + L" " + std::to_wstring(heading.cx) + L", ";
    }
  }
  EXPECT_EQ(headings,
            L"Type 80, Attributes 400, Last result 200, "
            L"Type 80, Cycle (dec.) 100, Delay (dec.) 140, Attributes 400, Last result 200, ");
  EXPECT_EQ(TextOf(host.frame->window), L"CAN1 | Sequence file: Untitled");
  NSdk::WindowSize preferred, minimum;
  EXPECT_EQ(events->GetSizes(&preferred, &minimum), S_OK);
  EXPECT_EQ(preferred.width * 1000 + preferred.height, 600500);
  EXPECT_EQ(minimum.width * 1000 + minimum.height, 200180);
}

TEST_F(GeneratorWindowTest, TemplatesGoWhereTheyMayStand) {
  const struct {
    std::initializer_list<const wchar_t*> labels;
    unsigned modifiers;
    const wchar_t* sequence;
    const wchar_t* cyclic;
  } rows[] = {
      {{L"Message templates"}, kNone, L"", L""},
      {{L"Message templates", L"SDO", L"Node 5, Drive"}, kNone, L"SDO*", L""},
      {{L"Flow control", L"PAUSE"}, kWithShift, L"SDO*", L""},
      {{L"Flow control", L"PAUSE"}, kNone, L"SDO PAUSE*", L""},
      {{L"Message templates", L"EMCY"}, kWithShift, L"SDO PAUSE*", L"EMCY*"},
  };
  for (const auto& row : rows) {
    ASSERT_TRUE(Choose(row.labels));
    Press(VK_F6, row.modifiers);
    EXPECT_EQ(Rows(Sequence()), row.sequence);
    EXPECT_EQ(Rows(Cyclic()), row.cyclic);
  }
  EXPECT_EQ(Cell(Sequence(), 0, 1), L"Download, Node-ID 5, COBID 605, Object 1000sub0, Size 0, Data ");
  SelectRows(Sequence(), {0});
  Choose({L"Message templates", L"NMT"});
  Press(VK_F6);
  EXPECT_EQ(Rows(Sequence()), L"SDO NMT* PAUSE") << "behind the selected row";
}

TEST_F(GeneratorWindowTest, KeysDoToSeveralRowsWhatTheMenuSays) {
  for (const wchar_t* kind : {L"SDO", L"PDO", L"NMT", L"SYNC"}) {
    Choose({L"Message templates", kind});
    Press(VK_F6);
  }
  Choose({L"Flow control", L"PAUSE"});
  Press(VK_F6);
  SelectRows(Sequence(), {1, 2});
  const struct {
    WPARAM key;
    unsigned modifiers;
    const wchar_t* rows;
  } steps[] = {
      {VK_F3, kNone, L"PDO* NMT* SDO SYNC PAUSE"},
      {VK_F3, kNone, L"PDO* NMT* SDO SYNC PAUSE"},
      {VK_F4, kNone, L"SDO PDO* NMT* SYNC PAUSE"},
      {VK_SPACE, kNone, L"SDO [PDO]* [NMT]* SYNC PAUSE"},
      {'X', kWithCtrl, L"SDO SYNC* PAUSE"},
      {'V', kWithCtrl, L"SDO SYNC [PDO]* [NMT]* PAUSE"},
      {VK_DELETE, kNone, L"SDO SYNC PAUSE*"},
      {'Z', kWithCtrl, L"SDO SYNC [PDO]* [NMT]* PAUSE"},
      {'Y', kWithCtrl, L"SDO SYNC PAUSE*"},
      {'A', kWithCtrl, L"SDO* SYNC* PAUSE*"},
      {'C', kWithCtrl, L"SDO* SYNC* PAUSE*"},
      {VK_DELETE, kNone, L""},
      {VK_DELETE, kNone, L""},
      {VK_RETURN, kNone, L""},
  };
  for (const auto& step : steps) {
    Press(step.key, step.modifiers);
    if (std::wstring(step.rows) == L"SDO SYNC PAUSE*") SelectRows(Sequence(), {2});
    EXPECT_EQ(Rows(Sequence()), step.rows) << static_cast<int>(step.key);
  }
  // The cyclic list takes messages only, from its neighbour and from another block alike.
  SetFocus(Cyclic());
  Press('V', kWithCtrl);
  EXPECT_EQ(Rows(Cyclic()), L"SDO* SYNC*");
  const auto other = host.AddBlock(NSdk::kProgIdCANopenIG);
  const auto window = NRuntime::Query<NSdk::IUIEventsEx>(other);
  const auto otherFrame = NRuntime::Make<Frame>();
  ASSERT_EQ(window->CreateBlockWindow(otherFrame.Get()), S_OK);
  void* handle = nullptr;
  window->GetBlockWindow(&handle);
  const HWND list = GetDlgItem(static_cast<HWND>(handle), IDC_IG_SEQUENCE);
  SetFocus(list);
  Press('V', kWithCtrl);
  EXPECT_EQ(Rows(list), L"SDO* SYNC* PAUSE*");
  NRuntime::Query<NSdk::IPlugInBlock>(other)->Detach();
}

TEST_F(GeneratorWindowTest, WhatOthersLeaveOnTheClipboardIsHarmless) {
  const std::string texts[] = {"",
                               "PDO",
                               "NONE X=1\n\n=\n",
                               std::string(100, '\xFF'),
                               "SDO Data=4 Data=ZZ\nPAUSE =",
                               "SYNC COBID=99999999999999999999 Enabled=-1"};
  SetFocus(Sequence());
  for (const std::string& text : texts) {
    OpenClipboard(Window());
    EmptyClipboard();
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, text.size() + 1);
    std::copy_n(text.c_str(), text.size(), static_cast<char*>(GlobalLock(memory)));
    GlobalUnlock(memory);
    SetClipboardData(RegisterClipboardFormatW(L"Ostrel CANopen message items"), memory);
    CloseClipboard();
    Press('V', kWithCtrl);
  }
  EXPECT_EQ(Rows(Sequence()), L"PDO SDO PAUSE SYNC*");
  EXPECT_EQ(Cell(Sequence(), 3, 1), L"COBID 80");
}

TEST_F(GeneratorWindowTest, TemplatesAndRowsAreDragged) {
  const HWND tree = Control(IDC_IG_TEMPLATES);
  const auto dragTemplate = [&](std::initializer_list<const wchar_t*> labels, HWND to) {
    RECT label = {};
    TreeView_GetItemRect(tree, Choose(labels), &label, TRUE);
    Drag(tree, {label.left + 5, label.top + 5}, to, kInRows);
  };
  dragTemplate({L"Message templates", L"SYNC"}, Cyclic());
  dragTemplate({L"Flow control", L"PAUSE"}, Cyclic());
  dragTemplate({L"Message templates"}, Sequence());
  dragTemplate({L"Flow control", L"PAUSE"}, Sequence());
  EXPECT_EQ(Rows(Sequence()) + L"/" + Rows(Cyclic()), L"PAUSE*/SYNC*");

  SelectRows(Cyclic(), {0});
  RECT row = {};
  ListView_GetItemRect(Cyclic(), 0, &row, LVIR_LABEL);
  Drag(Cyclic(), {row.left + 5, row.top + 2}, Sequence(), {60, row.top});
  EXPECT_EQ(Rows(Sequence()) + L"/" + Rows(Cyclic()), L"SYNC* PAUSE/");
  // Over a list that takes it, a line shows where it would go; a drag that is broken off leaves nothing.
  PostMessageW(Sequence(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(row.left + 5, row.top + 2));
  for (int step = 1; step <= 4; ++step) {
    PostMessageW(Sequence(), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(row.left + 5 + 5 * step, row.top + 2));
  }
  PumpFor(30);
  POINT over = {60, row.bottom};
  MapWindowPoints(Cyclic(), Window(), &over, 1);
  SendMessageW(Window(), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(over.x, over.y));
  const HWND mark = FindWindowExW(Cyclic(), nullptr, L"Static", nullptr);
  EXPECT_TRUE(IsWindowVisible(mark));
  SendMessageW(Window(), WM_COMMAND, IDCANCEL, 0);
  EXPECT_FALSE(IsWindowVisible(mark));
  SendMessageW(Window(), WM_LBUTTONUP, 0, MAKELPARAM(over.x, over.y));
  PostMessageW(Sequence(), WM_LBUTTONUP, 0, 0);
  PumpFor(10);
  EXPECT_EQ(Rows(Cyclic()), L"");
}

TEST_F(GeneratorWindowTest, MenusOfferWhatMakesSense) {
  const auto offered = [&](HWND control) {
    std::wstring texts;
    WhileOpen(
        kMenu,
        [&] {
          SendMessageW(Window(), WM_CONTEXTMENU, reinterpret_cast<WPARAM>(control), MAKELPARAM(-1, -1));
        },
        [&](HWND menu) {
          constexpr UINT kGetMenu = 0x1E1;
          const auto handle = reinterpret_cast<HMENU>(SendMessageW(menu, kGetMenu, 0, 0));
          for (int item = 0; item < GetMenuItemCount(handle); ++item) {
            const UINT state = GetMenuState(handle, static_cast<UINT>(item), MF_BYPOSITION);
            if (!(state & (MF_GRAYED | MF_SEPARATOR)))
              texts += MenuTexts(handle)[static_cast<std::size_t>(item)] + L"|";
          }
          EndMenu();
        });
    return texts;
  };
  const HWND tree = Control(IDC_IG_TEMPLATES);
  EXPECT_EQ(offered(tree), L"") << "a root";
  Choose({L"Flow control", L"PAUSE"});
  EXPECT_EQ(offered(tree), L"Insert in message sequence\tF6|");
  Choose({L"Message templates", L"PDO"});
  EXPECT_EQ(offered(tree), L"Insert in message sequence\tF6|Insert as cyclic message\tShift+F6|");
  Press(VK_F6);
  Press(VK_F6);
  OpenClipboard(Window());
  EmptyClipboard();
  CloseClipboard();
  SelectRows(Sequence(), {1});
  EXPECT_EQ(
      offered(Sequence()),
      L"Edit...\tDoubleclick|Delete\tDel|Cut\tCtrl+X|Copy\tCtrl+C|Move up\tF3|Enabled\tSpace|Undo\tCtrl+Z|");
  Press('C', kWithCtrl);
  SetFocus(Cyclic());
  EXPECT_EQ(offered(Cyclic()), L"Paste\tCtrl+V|Undo\tCtrl+Z|");
}

TEST_F(GeneratorWindowTest, ARunLocksMarksAndTellsResults) {
  EXPECT_FALSE(IsEnabled(IDC_IG_EXECUTE) || IsEnabled(IDC_IG_START));
  Choose({L"Message templates", L"SYNC"});
  Press(VK_F6);
  Choose({L"Message templates", L"SDO"});
  Press(VK_F6);
  Choose({L"Message templates", L"SYNC"});
  Press(VK_F6, kWithShift);
  Start();
  PumpFor(5);
  ASSERT_TRUE(IsEnabled(IDC_IG_EXECUTE) && IsEnabled(IDC_IG_START));
  SetFocus(Sequence());
  Click(IDC_IG_START);
  Click(IDC_IG_EXECUTE);
  PumpFor(5);
  EXPECT_EQ(TextOf(Control(IDC_IG_EXECUTE)) + TextOf(Control(IDC_IG_START)), L"St&opSt&op");
  EXPECT_FALSE(IsEnabled(IDC_IG_SEQUENCE) || IsEnabled(IDC_IG_CYCLIC) || IsEnabled(IDC_IG_OPEN));
  EXPECT_TRUE(IsWindowEnabled(GetFocus())) << "the focus has left the list";
  Press(VK_F6);
  EXPECT_EQ(Rows(Sequence()), L"SYNC SDO*") << "locked";
  runtime->Step();
  EXPECT_EQ(Cell(Sequence(), 0, 2), L"Sent");
  runtime->Step();
  EXPECT_EQ(Cell(Sequence(), 1, 2), L"SDO transfer...");
  for (int tick = 0; tick < 300; ++tick) runtime->Step();
  PumpFor(5);
  EXPECT_EQ(Cell(Sequence(), 1, 2), L"SDO time-out");
  EXPECT_EQ(Cell(Cyclic(), 0, 4), L"Sent");
  EXPECT_EQ(TextOf(Control(IDC_IG_EXECUTE)), L"&Execute");
  EXPECT_TRUE(IsEnabled(IDC_IG_SEQUENCE));
  EXPECT_FALSE(IsEnabled(IDC_IG_CYCLIC));
  Stop();
  PumpFor(5);
  EXPECT_EQ(TextOf(Control(IDC_IG_EXECUTE)) + TextOf(Control(IDC_IG_START)), L"&ExecuteS&tart");
  EXPECT_TRUE(IsEnabled(IDC_IG_CYCLIC) && IsEnabled(IDC_IG_OPEN));
  EXPECT_FALSE(IsEnabled(IDC_IG_EXECUTE) || IsEnabled(IDC_IG_START));
}

TEST_F(GeneratorWindowTest, AWindowThatIsMadeMeanwhileShowsHowThingsStand) {
  Choose({L"Message templates", L"SYNC"});
  Press(VK_F6);
  events->DestroyBlockWindow();
  Start();
  generator->ToggleSequence();
  ASSERT_EQ(events->CreateBlockWindow(host.frame.Get()), S_OK);
  PumpFor(5);
  EXPECT_EQ(Rows(Sequence()), L"SYNC");
  EXPECT_EQ(TextOf(Control(IDC_IG_EXECUTE)), L"St&op");
  EXPECT_FALSE(IsEnabled(IDC_IG_SEQUENCE));
  for (int tick = 0; tick < 3; ++tick) runtime->Step();
  PumpFor(5);
  EXPECT_EQ(TextOf(Control(IDC_IG_EXECUTE)), L"&Execute");
  EXPECT_TRUE(IsEnabled(IDC_IG_SEQUENCE));
}

TEST_F(GeneratorWindowTest, PrivateMessagesActOnItsControlsAlone) {
  Choose({L"Message templates", L"SYNC"});
  Press(VK_F6);
  Press(VK_F6);
  constexpr UINT kEnable = 0x409, kStopTimer = 0x40C, kSelect = 0x40F, kText = 0x410;
  SendMessageW(Window(), kEnable, IDC_IG_EXECUTE, 1);
  EXPECT_TRUE(IsEnabled(IDC_IG_EXECUTE));
  SendMessageW(Window(), kSelect, IDC_IG_SEQUENCE, 0);
  EXPECT_EQ(GetFocus(), Sequence());
  EXPECT_EQ(Rows(Sequence()), L"SYNC* SYNC");
  SendMessageW(Window(), kSelect, reinterpret_cast<WPARAM>(Sequence()), 1);
  EXPECT_EQ(Rows(Sequence()), L"SYNC SYNC*");
  for (const LPARAM nonsense : {LPARAM{-1}, LPARAM{2}, LPARAM{1} << 40}) {
    SendMessageW(Window(), kSelect, IDC_IG_SEQUENCE, nonsense);
    SendMessageW(Window(), kText, IDC_IG_EXECUTE, nonsense);
    SendMessageW(Window(), kStopTimer, static_cast<WPARAM>(nonsense), 0);
    SendMessageW(Window(), kEnable, static_cast<WPARAM>(nonsense), 0);
  }
  EXPECT_EQ(Rows(Sequence()), L"SYNC SYNC*");
  EXPECT_EQ(TextOf(Control(IDC_IG_EXECUTE)), L"&Execute");
}

// What the keyboard alone can do: compose, edit, run and save.
TEST_F(GeneratorWindowTest, WithoutAMouse) {
  Start();
  PumpFor(5);
  SetFocus(Control(IDC_IG_TEMPLATES));
  for (const WPARAM key : {VK_HOME, VK_DOWN, VK_DOWN, VK_DOWN}) Press(key);  // to PDO, past SDO and its node
  Press(VK_F6);
  Press('Q', kWithAlt);
  EXPECT_EQ(GetFocus(), Sequence());
  Press(VK_DOWN);
  WhileOpen(
      kDialog, [&] { Press(VK_RETURN); },
      [&](HWND editor) {
        SetDlgItemTextW(editor, IDC_EDIT_DATA, L"uint:4660");
        SetDlgItemTextW(editor, IDC_EDIT_DLC, L"2");
        SendMessageW(editor, WM_COMMAND, IDOK, 0);
      });
  EXPECT_EQ(Cell(Sequence(), 0, 1), L"Node-ID 1, COBID 181, DLC 2, Data uint:4660");
  for (const auto& [key, modifiers] : {std::pair{'C', kWithCtrl}, {'V', kWithCtrl}})
    Press(static_cast<WPARAM>(key), modifiers);
  Press(VK_SPACE);
  EXPECT_EQ(Rows(Sequence()), L"PDO [PDO]*");
  Press('E', kWithAlt);
  for (int tick = 0; tick < 3; ++tick) runtime->Step();
  PumpFor(5);
  EXPECT_THAT(runtime->sent, testing::ElementsAre(L"181 34 12"));
  EXPECT_EQ(Cell(Sequence(), 0, 2) + L"/" + Cell(Sequence(), 1, 2), L"Sent/");
  WithFile(File(L"kept.seq"), [&] { Press('V', kWithAlt); });
  EXPECT_EQ(TextOf(host.frame->window), L"CAN1 | Sequence file: " + File(L"kept.seq").wstring());
}

TEST_F(GeneratorWindowTest, UnsavedListsAreAskedFor) {
  const auto unsaved = NRuntime::Query<NSdk::IUnsavedWork>(block);
  EXPECT_EQ(unsaved->ConfirmLeaving(Window()), S_OK) << "nothing to lose";
  Choose({L"Message templates", L"SYNC"});
  Press(VK_F6);
  const auto answer = [&](int button) {
    HRESULT result = E_FAIL;
    WhileOpen(
        kDialog, [&] { result = unsaved->ConfirmLeaving(Window()); },
        [&](HWND box) { SendMessageW(box, WM_COMMAND, static_cast<WPARAM>(button), 0); });
    return result;
  };
  EXPECT_EQ(answer(IDNO), S_OK);
  EXPECT_EQ(answer(IDCANCEL), S_FALSE);
  WithFile(File(L"one"), [&] { Click(IDC_IG_SAVE); });
  EXPECT_TRUE(std::filesystem::exists(File(L"one.seq"))) << "with the extension";
  EXPECT_EQ(unsaved->ConfirmLeaving(Window()), S_OK);

  SetFocus(Control(IDC_IG_TEMPLATES));
  Press(VK_F6);
  WhileOpen(
      kDialog, [&] { Click(IDC_IG_OPEN); }, [&](HWND box) { SendMessageW(box, WM_COMMAND, IDCANCEL, 0); });
  EXPECT_EQ(Rows(Sequence()), L"SYNC SYNC*") << "the user wants to keep them";
  SetFocus(Sequence());
  Press('Z', kWithCtrl);
  EXPECT_EQ(unsaved->ConfirmLeaving(Window()), S_OK) << "as saved";
  Choose({L"Message templates", L"NMT"});
  Press(VK_F6, kWithShift);
  Press('Z', kWithCtrl);
  WithFile(File(L"one.seq"), [&] { Click(IDC_IG_OPEN); });
  EXPECT_EQ(Rows(Sequence()) + L"/" + Rows(Cyclic()), L"SYNC/");
  Press('Z', kWithCtrl);
  EXPECT_EQ(Rows(Sequence()), L"SYNC") << "another file's changes are not taken back";
}

// The configuration tells of the file before the window is made.
TEST_F(GeneratorWindowTest, LoadsItsFileWithTheConfiguration) {
  Choose({L"Message templates", L"SYNC"});
  Press(VK_F6);
  ASSERT_EQ(generator->SaveSequence(File(L"kept.seq").wstring().c_str(), nullptr), S_OK);
  const auto writer = NRuntime::Make<NRuntime::SettingsWriter>();
  NRuntime::Query<NSdk::IPersistentObject>(block)->Save(writer.Get());
  const auto reload = [&] {
    const auto again = host.AddBlock(NSdk::kProgIdCANopenIG);
    const auto reader = NRuntime::Make<NRuntime::SettingsReader>(writer->Written());
    NRuntime::Query<NSdk::IPersistentObject>(again)->Load(reader.Get());
    const auto frame = NRuntime::Make<Frame>();
    NRuntime::Query<NSdk::IUIEventsEx>(again)->CreateBlockWindow(frame.Get());
    PumpFor(250);
    const std::wstring caption = TextOf(frame->window);
    NRuntime::Query<NSdk::IPlugInBlock>(again)->Detach();
    return caption;
  };
  EXPECT_EQ(reload(), L"CAN1 | Sequence file: " + File(L"kept.seq").wstring());
  std::filesystem::remove(File(L"kept.seq"));
  std::wstring text;
  WhileOpen(
      kDialog, [&] { EXPECT_EQ(reload(), L"CAN1 | Sequence file: Untitled"); },
      [&](HWND box) {
        wchar_t words[512] = {};
        GetDlgItemTextW(box, 0xFFFF, words, 512);
        text = words;
        SendMessageW(box, WM_COMMAND, IDOK, 0);
      });
  EXPECT_EQ(text, L"CANopen Interactive Generator Block: Error - Sequence file " +
                      File(L"kept.seq").wstring() + L" cannot be loaded");
}

TEST_F(GeneratorWindowTest, TenThousandRows) {
  Choose({L"Message templates", L"EMCY"});
  Press(VK_F6);
  SetFocus(Sequence());
  for (int rows = 1; rows < 10'000; rows *= 2) {
    Press('A', kWithCtrl);
    Press('C', kWithCtrl);
    Press('V', kWithCtrl);
  }
  ASSERT_GE(ListView_GetItemCount(Sequence()), 10'000);
  // The best of some, of the processor's time, as others use the machine too.
  const auto time = [&](const char* what, int times, double limit_ms, const std::function<void()>& action) {
    double best = 1e9, bestOfThread = 1e9;
    for (int turn = 0; turn < times; ++turn) {
      const auto start = std::chrono::steady_clock::now();
      const double startOfThread = NTest::ThreadTime_ms();
      action();
      UpdateWindow(Sequence());
      const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
      best = std::min(best, taken.count());
      bestOfThread = std::min(bestOfThread, NTest::ThreadTime_ms() - startOfThread);
    }
    std::printf("[ MEASURED ] %s: %.1f ms, %.0f ms of them the thread's\n", what, best, bestOfThread);
    EXPECT_LT(bestOfThread, limit_ms) << what;
  };
  constexpr double kOfOne_ms = 100, kOfAll_ms = 1000;
  SelectRows(Sequence(), {0});
  Press('C', kWithCtrl);
  time("insert a row", 3, kOfOne_ms, [&] { Press('V', kWithCtrl); });
  time("move a row", 3, kOfOne_ms, [&] { Press(VK_F4); });
  time("scroll to the end", 1, kOfOne_ms, [&] { Press(VK_END); });
  time("scroll by a page", 3, kOfOne_ms, [&] { Press(VK_PRIOR); });
  time("delete a row", 3, kOfOne_ms, [&] { Press(VK_DELETE); });
  time("select all", 1, kOfAll_ms, [&] { Press('A', kWithCtrl); });
  time("check all", 2, kOfAll_ms, [&] { Press(VK_SPACE); });
  time("copy all", 1, kOfAll_ms, [&] { Press('C', kWithCtrl); });
  time("delete all", 1, kOfAll_ms, [&] { Press(VK_DELETE); });
  time("take it back", 1, kOfAll_ms, [&] { Press('Z', kWithCtrl); });
}

}  // namespace
}  // namespace NTest
