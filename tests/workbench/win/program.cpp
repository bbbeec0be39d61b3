// asio's header comes first: it brings the socket headers, which must precede those of Windows.
#include "host/workbench/win/window_loop.h"

#include "tests/workbench/win/program.h"

#include <fstream>
#include <iterator>

#include "tests/windows/window_driver.h"

namespace NWorkbenchTest {
namespace {

constexpr std::chrono::seconds kPatience{10};

struct Search {
  std::function<bool(HWND)> isWanted;
  HWND found = nullptr;
};

BOOL CALLBACK Compare(HWND window, LPARAM parameter) {
  auto& search = *reinterpret_cast<Search*>(parameter);
  if (!search.isWanted(window)) return TRUE;
  search.found = window;
  return FALSE;
}

HWND FindInside(HWND parent, std::function<bool(HWND)> isWanted) {
  Search search{std::move(isWanted)};
  EnumChildWindows(parent, Compare, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

bool IsOfClass(HWND window, const std::wstring& className) {
  wchar_t name[64] = {};
  GetClassNameW(window, name, 64);
  return name == className;
}

HWND FindInside(HWND parent, const wchar_t* className) {
  return FindInside(parent, [=](HWND window) { return IsOfClass(window, className); });
}

BOOL CALLBACK CompareBox(HWND window, LPARAM parameter) {
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  if (process != GetCurrentProcessId() || !IsWindowVisible(window)) return TRUE;
  return Compare(window, parameter);
}

}  // namespace

Program::Program(const std::filesystem::path& configuration, const std::filesystem::path& module) {
  INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_WIN95_CLASSES};
  InitCommonControlsEx(&controls);
  NWorkbench::StartOptions options;
  options.module = module;
  options.folder = std::filesystem::path(OSTREL_MODULE).parent_path();
  options.configuration = configuration;
  mWindow = std::make_unique<NWorkbench::MainWindow>(options);
  mMain = mWindow->Handle();
  mWindow->Begin(SW_SHOWNORMAL);
}

Program::~Program() {
  mWindow.reset();
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) continue;  // the request to quit among them
}

bool Program::Wait(const std::function<bool()>& isSo) {
  const auto end = std::chrono::steady_clock::now() + kPatience;
  MSG message;
  while (!isSo()) {
    if (std::chrono::steady_clock::now() > end) return false;
    if (!PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
      MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
    } else {
      Handle(message);
    }
  }
  return true;
}

void Program::Handle(MSG& message) {
  const auto begin = std::chrono::steady_clock::now();
  const HWND window = message.hwnd;
  const UINT kind = message.message;
  if (!mWindow->Translate(message)) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  if (mWatch) mWatch(window, kind, std::chrono::steady_clock::now() - begin);
}

bool Program::CommandOfMenu(int menu, const std::wstring& caption) {
  const HMENU bar = GetMenu(mMain);
  SendMessageW(mMain, WM_INITMENU, reinterpret_cast<WPARAM>(bar), 0);
  const HMENU inner = GetSubMenu(bar, menu);
  for (int position = 0; position < GetMenuItemCount(inner); ++position) {
    wchar_t text[128] = {};
    GetMenuStringW(inner, static_cast<UINT>(position), text, 128, MF_BYPOSITION);
    if (std::wstring(text).find(caption) == std::wstring::npos) continue;
    Command(static_cast<int>(GetMenuItemID(inner, position)));
    return true;
  }
  return false;
}

HWND Program::Child(const wchar_t* className) const { return FindInside(mMain, className); }

HWND Program::Control(int id) const {
  return FindInside(mMain, [=](HWND window) { return GetDlgCtrlID(window) == id; });
}

int Program::TraceRows() const {
  return ListView_GetItemCount(FindInside(Child(L"OstrelTrace"), WC_LISTVIEWW));
}

std::vector<std::wstring> Program::Messages() const {
  std::vector<std::wstring> texts;
  const HWND list = FindInside(Child(L"OstrelMessages"), WC_LISTVIEWW);
  for (int row = 0; row < ListView_GetItemCount(list); ++row) {
    wchar_t text[512] = {};
    ListView_GetItemText(list, row, 1, text, 512);
    texts.emplace_back(text);
  }
  return texts;
}

std::vector<std::wstring> Program::SetupLines() const {
  std::vector<std::wstring> lines;
  const HWND tree = FindInside(Child(L"OstrelSetup"), WC_TREEVIEWW);
  for (HTREEITEM item = TreeView_GetRoot(tree); item; item = TreeView_GetNextVisible(tree, item)) {
    lines.push_back(NTest::LabelOf(tree, item));
  }
  return lines;
}

std::wstring Program::Status(int part) const {
  wchar_t text[256] = {};
  SendMessageW(FindInside(mMain, STATUSCLASSNAMEW), SB_GETTEXTW, static_cast<WPARAM>(part),
               reinterpret_cast<LPARAM>(text));
  return text;
}

Answers::Answers(int answer, std::function<bool()> when)
    : mAnswer(answer), mWhen(std::move(when)), mThread([this] { Run(); }) {}

Answers::~Answers() {
  mStop = true;
  if (mThread.joinable()) mThread.join();
}

void Answers::Run() {
  constexpr int kTextOfBox = 0xFFFF;
  HWND last = nullptr;
  while (!mStop) {
    Sleep(20);
    Search search{[](HWND window) { return IsOfClass(window, L"#32770"); }};
    EnumWindows(CompareBox, reinterpret_cast<LPARAM>(&search));
    if (!search.found || search.found == last || !mWhen()) continue;
    wchar_t text[1024] = {};
    GetDlgItemTextW(search.found, kTextOfBox, text, 1024);
    mTexts += text;
    last = search.found;
    PostMessageW(search.found, WM_COMMAND, static_cast<WPARAM>(mAnswer), 0);
    mHasAnswered = true;
  }
}

std::wstring Answers::Texts() {
  mStop = true;
  mThread.join();
  return mTexts;
}

std::filesystem::path WriteConfiguration(const std::string& name, const std::string& channels,
                                         const std::string& more) {
  const auto folder =
      std::filesystem::temp_directory_path() / ("workbench" + std::to_string(GetCurrentProcessId()));
  std::filesystem::create_directories(folder);
  const auto file = folder / name;
  std::ofstream(file, std::ios::binary)
      << R"({"format": 1, "variant": "halvard", "language": 1, "numberBase": 10)"
      << R"(, "channels": [)" << channels << "]" << more << "}";
  return file;
}

std::string ReadFile(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace NWorkbenchTest
