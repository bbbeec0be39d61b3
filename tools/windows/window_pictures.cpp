// window_pictures CONFIGURATION en|de FOLDER: opens the program's and the module's windows one after the
// other, menus and message boxes among them, and writes a picture of each into the folder, NAME.bmp. It needs
// a display: tools/screenshots gives it one.

// asio's header comes first: it brings the socket headers, which must precede those of Windows.
#include "host/workbench/win/window_loop.h"

#include <commctrl.h>

#include <algorithm>
#include <cstdio>
#include <cwchar>

#include "host/workbench/win/command_ids.h"
#include "resources/resource_ids.h"
#include "sdk/generator.h"
#include "tests/workbench/win/program.h"
#include "tools/windows/picture.h"

namespace {

using namespace NWorkbenchTest;
using namespace NWorkbench;
using namespace std::chrono_literals;

constexpr wchar_t kDialogClass[] = L"#32770", kMenuClass[] = L"#32768";
constexpr auto kToSettle = 600ms;
constexpr std::size_t kKinds = 10;  // of items

std::filesystem::path gFolder;
bool gAllWritten = true;

void Take(HWND window, const std::string& name) {
  RECT area = {};
  GetWindowRect(window, &area);
  const bool written = window && NTools::SavePicture(area, gFolder / (name + ".bmp"));
  if (!written) std::fprintf(stderr, "window_pictures: no picture of %s\n", name.c_str());
  gAllWritten = gAllWritten && written;
}

BOOL CALLBACK CompareClass(HWND window, LPARAM parameter) {
  auto& search = *reinterpret_cast<std::pair<const wchar_t*, HWND>*>(parameter);
  wchar_t name[64] = {};
  DWORD process = 0;
  GetClassNameW(window, name, 64);
  GetWindowThreadProcessId(window, &process);
  if (process != GetCurrentProcessId() || !IsWindowVisible(window) || std::wcscmp(name, search.first) != 0)
    return TRUE;
  search.second = window;
  return FALSE;
}

HWND FindOpen(const wchar_t* className) {
  std::pair<const wchar_t*, HWND> search{className, nullptr};
  EnumWindows(CompareClass, reinterpret_cast<LPARAM>(&search));
  return search.second;
}

// On a thread of its own, since dialogs and menus keep that of the windows: waits for one, does with it what
// is asked, and closes it.
class Photographer {
 public:
  Photographer(HWND main, const wchar_t* className, std::function<void(HWND)> shoot)
      : mThread([=] {
          for (int attempt = 0; attempt < 200; ++attempt) {
            Sleep(50);
            const HWND window = FindOpen(className);
            if (!window) continue;
            std::this_thread::sleep_for(kToSettle);
            shoot(window);
            if (className == kMenuClass) {
              GUITHREADINFO info = {};
              info.cbSize = sizeof info;
              GetGUIThreadInfo(GetWindowThreadProcessId(main, nullptr), &info);
              SendMessageW(info.hwndMenuOwner, WM_CANCELMODE, 0, 0);
            } else {
              for (const WPARAM button : {IDCANCEL, IDNO}) PostMessageW(window, WM_COMMAND, button, 0);
              PostMessageW(window, WM_CLOSE, 0, 0);
            }
            return;
          }
          std::fprintf(stderr, "window_pictures: a window has not come\n");
          gAllWritten = false;
        }) {}
  ~Photographer() { mThread.join(); }
  Photographer(const Photographer&) = delete;
  Photographer& operator=(const Photographer&) = delete;

 private:
  std::thread mThread;
};

class Tour {
 public:
  explicit Tour(const std::filesystem::path& configuration) : mProgram(configuration) {}

  void Settle(std::chrono::milliseconds span = kToSettle) {
    const auto end = std::chrono::steady_clock::now() + span;
    mProgram.Wait(
        [&] { return std::chrono::steady_clock::now() >= end && HIWORD(GetQueueStatus(QS_PAINT)) == 0; });
  }
  void TakeMain(const std::string& name) {
    Settle();
    Take(mProgram.Main(), name);
  }
  /// What a command opens, by itself.
  void TakeDialog(const std::string& name, int command) {
    TakeDialog(command, [name](HWND dialog) { Take(dialog, name); });
  }
  void TakeDialog(int command, const std::function<void(HWND)>& shoot) {
    const Photographer photographer(mProgram.Main(), kDialogClass, shoot);
    mProgram.Command(command);
  }
  /// A menu with the main window around it.
  void TakeMenu(const std::string& name, const std::function<void()>& open,
                const std::vector<WPARAM>& keys = {}) {
    const HWND main = mProgram.Main();
    const Photographer photographer(main, kMenuClass, [=](HWND) {
      for (const WPARAM key : keys) {
        PostMessageW(main, WM_KEYDOWN, key, 0);
        std::this_thread::sleep_for(kToSettle);
      }
      Take(main, name);
    });
    open();
    Settle();
  }
  void MainMenus();
  void ToolBarMenu();
  void PlaySequences();
  void Blocks();
  void Editors();
  void Channels();
  void Messages();
  void Run(int language);

 private:
  void SelectLine(int line);
  HWND InGenerator(int id);
  int LineOf(const wchar_t* text) const;

  Program mProgram;
};

void Tour::MainMenus() {
  const HWND main = mProgram.Main();
  for (int position = 0; position < GetMenuItemCount(GetMenu(main)); ++position) {
    TakeMenu("menu-" + std::to_string(position), [&] {
      for (int step = 0; step < position; ++step) PostMessageW(main, WM_KEYDOWN, VK_RIGHT, 0);
      PostMessageW(main, WM_KEYDOWN, VK_DOWN, 0);
      SendMessageW(main, WM_SYSCOMMAND, SC_KEYMENU, 0);
    });
  }
}

void Tour::ToolBarMenu() {
  const HWND bar = mProgram.Child(TOOLBARCLASSNAMEW);
  for (int position = 0; position < SendMessageW(bar, TB_BUTTONCOUNT, 0, 0); ++position) {
    TBBUTTON button = {};
    SendMessageW(bar, TB_GETBUTTON, static_cast<WPARAM>(position), reinterpret_cast<LPARAM>(&button));
    if ((button.fsStyle & BTNS_WHOLEDROPDOWN) == 0) continue;
    RECT area = {};
    SendMessageW(bar, TB_GETITEMRECT, static_cast<WPARAM>(position), reinterpret_cast<LPARAM>(&area));
    TakeMenu("menu-nmt",
             [&] { SendMessageW(bar, WM_LBUTTONDOWN, 0, MAKELPARAM(area.left + 4, area.top + 4)); },
             {VK_DOWN, VK_RIGHT, VK_RIGHT});
    return;
  }
}

int Tour::LineOf(const wchar_t* text) const {
  const auto lines = mProgram.SetupLines();
  const auto found = std::find(lines.begin(), lines.end(), text);
  return static_cast<int>(found - lines.begin());
}

void Tour::SelectLine(int line) {
  const HWND tree = GetWindow(mProgram.Child(L"OstrelSetup"), GW_CHILD);
  HTREEITEM item = TreeView_GetRoot(tree);
  for (; line > 0; --line) item = TreeView_GetNextVisible(tree, item);
  TreeView_SelectItem(tree, item);
}

void Tour::Blocks() {
  const HWND setup = mProgram.Child(L"OstrelSetup");
  for (const auto& [name, text] :
       {std::pair("generator", L"Commissioning"), std::pair("scanner", L"Who is there")}) {
    SelectLine(LineOf(text));
    TakeMenu(std::string("menu-") + name, [&] { SendMessageW(setup, WM_CONTEXTMENU, 0, -1); });
  }
  SelectLine(LineOf(L"Commissioning"));
  TakeDialog("settings", kBlockConfigure);
  const HWND scanner = GetWindow(mProgram.Child(L"OstrelBlock"), GW_CHILD);
  TakeMenu("menu-scanner-window", [&] { SendMessageW(scanner, WM_CONTEXTMENU, 0, -1); });
  mProgram.Command(kBlockOpen);  // what is selected in the setup window is the generator
  Settle();
  Take(reinterpret_cast<HWND>(SendMessageW(mProgram.Child(L"MDIClient"), WM_MDIGETACTIVE, 0, 0)),
       "generator");
  SendMessageW(InGenerator(IDC_IG_EXECUTE), BM_CLICK, 0, 0);
  Settle(1s);
  Take(GetParent(InGenerator(IDC_IG_EXECUTE)), "generator-runs");
}

HWND Tour::InGenerator(int id) {
  const auto active =
      reinterpret_cast<HWND>(SendMessageW(mProgram.Child(L"MDIClient"), WM_MDIGETACTIVE, 0, 0));
  return GetDlgItem(GetWindow(active, GW_CHILD), id);
}

// Its menus and the editor of each kind: a template after the other goes into the sequence and is opened
// there.
void Tour::Editors() {
  const HWND tree = InGenerator(IDC_IG_TEMPLATES), sequence = InGenerator(IDC_IG_SEQUENCE);
  const HWND window = GetParent(tree);
  Take(window, "generator-results");
  TakeMenu("menu-templates",
           [&] { SendMessageW(window, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(tree), -1); });
  const auto root = TreeView_GetRoot(tree);
  for (HTREEITEM parent : {root, TreeView_GetNextSibling(tree, root)}) {
    for (auto entry = TreeView_GetChild(tree, parent); entry; entry = TreeView_GetNextSibling(tree, entry)) {
      TreeView_SelectItem(tree, entry);
      ListView_SetItemState(sequence, -1, 0, LVIS_SELECTED);
      SendMessageW(tree, WM_KEYDOWN, VK_F6, 1);
      const int row = ListView_GetItemCount(sequence) - 1;
      wchar_t type[32] = {};
      ListView_GetItemText(sequence, row, 0, type, 32);
      const std::string kind(type, type + std::wcslen(type));
      const Photographer photographer(mProgram.Main(), kDialogClass,
                                      [kind](HWND dialog) { Take(dialog, "editor-" + kind); });
      SendMessageW(sequence, WM_KEYDOWN, VK_RETURN, 1);
    }
  }
  TakeMenu("menu-items",
           [&] { SendMessageW(window, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(sequence), -1); });
  for (std::size_t kind = 0; kind < kKinds; ++kind) {
    SendMessageW(window, WM_COMMAND, ID_IG_UNDO, 0);
  }
}

void Tour::Channels() {
  TakeDialog(kOptionsChannels, [](HWND dialog) {
    Take(dialog, "channels");
    const HWND tabs = FindWindowExW(dialog, nullptr, WC_TABCONTROLW, nullptr);
    for (int tab = 1; tab < TabCtrl_GetItemCount(tabs); ++tab) {
      SendMessageW(tabs, TCM_SETCURFOCUS, static_cast<WPARAM>(tab), 0);
      std::this_thread::sleep_for(kToSettle);
      Take(dialog, "channels-page-" + std::to_string(tab));
    }
  });
}

// The program's own message boxes.
void Tour::Messages() {
  TakeDialog("about", kHelpAbout);
  mProgram.Command(kOptionsHexadecimal);
  TakeDialog("ask-save", kFileNew);
  TakeDialog("open", kFileSaveAs);
}

// Names and states come with them.
void Tour::PlaySequences() {
  for (const auto& block : mProgram.Host().Blocks()) {
    const auto generator = NRuntime::Query<NSdk::IGenerator>(block.object);
    if (generator && generator->ReloadSequence() == S_OK) generator->ToggleSequence();
  }
}

void Tour::Run(int language) {
  mProgram.Command(language);
  Settle();
  mProgram.Command(kMeasureStart);
  PlaySequences();
  Settle(6s);
  TakeMain("workbench");
  Take(mProgram.Child(L"OstrelBlock"), "scanner");
  MainMenus();
  ToolBarMenu();
  TakeDialog("node-selection", kFirstDropDown + 1);
  Blocks();
  TakeDialog("ask-stop", kFileNew);
  mProgram.Command(kMeasureStop);
  Settle();
  Editors();
  Channels();
  Messages();
  mProgram.Command(kOptionsLargeIcons);
  mProgram.Command(kOptionsTesmond);
  TakeMain("workbench-large-icons");
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
  if (count != 4) {
    std::fputs("usage: window_pictures CONFIGURATION en|de FOLDER\n", stderr);
    return 2;
  }
  SetProcessDPIAware();
  gFolder = arguments[3];
  Tour tour(arguments[1]);
  tour.Run(std::wstring(arguments[2]) == L"de" ? kOptionsGerman : kOptionsEnglish);
  return gAllWritten ? 0 : 1;
}
