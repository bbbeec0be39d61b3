// The program itself, in a process of its own that is made to crash from outside.

#include <windows.h>

#include <commctrl.h>

#include <gmock/gmock.h>

#include "host/workbench/win/command_ids.h"
#include "resources/resource_ids.h"
#include "tests/test_folder.h"

namespace {

using testing::HasSubstr;
using testing::Not;
namespace fs = std::filesystem;

struct Search {
  DWORD process;
  std::wstring className;
  int id;  // of a control; 0: any
  HWND found = nullptr;
};

BOOL CALLBACK Compare(HWND window, LPARAM parameter) {
  auto& search = *reinterpret_cast<Search*>(parameter);
  DWORD process = 0;
  wchar_t name[64] = {};
  GetWindowThreadProcessId(window, &process);
  GetClassNameW(window, name, 64);
  const bool isIt = process == search.process && (search.className.empty() || search.className == name) &&
                    (search.id == 0 || GetDlgCtrlID(window) == search.id) && IsWindowVisible(window);
  if (isIt) search.found = window;
  return !isIt;
}

template <class Function>
auto Until(Function function) {
  for (int turn = 0; turn < 1000 && !function(); ++turn) Sleep(20);
  return function();
}

/// The box that is open, of whatever process; answered when it goes.
HWND Box() {
  return Until([] { return FindWindowW(L"#32770", L"Ostrel Workbench"); });
}

std::wstring TextOf(HWND window, int id) {
  wchar_t text[2048] = {};
  SendMessageW(id ? GetDlgItem(window, id) : window, WM_GETTEXT, 2048, reinterpret_cast<LPARAM>(text));
  return text;
}

std::wstring Answer(int answer) {
  const HWND box = Box();
  std::wstring text = TextOf(box, 0xFFFF) + L"|" + TextOf(box, answer);
  PostMessageW(box, WM_COMMAND, static_cast<WPARAM>(answer), 0);
  EXPECT_TRUE(Until([&] { return !IsWindow(box); }));
  return text;
}

class RealProgram {
 public:
  explicit RealProgram(const fs::path& configuration) {
    std::wstring command =
        L"\"" + fs::path(OSTREL_WORKBENCH).wstring() + L"\" \"" + configuration.wstring() + L"\"";
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    EXPECT_TRUE(CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                               &mProcess));
  }
  ~RealProgram() {
    TerminateProcess(mProcess.hProcess, 1);
    End();
    CloseHandle(mProcess.hThread);
    CloseHandle(mProcess.hProcess);
  }
  RealProgram(const RealProgram&) = delete;
  RealProgram& operator=(const RealProgram&) = delete;

  HWND Main() const {
    Search search{mProcess.dwProcessId, L"OstrelWorkbench", 0};
    Until([&] { return EnumWindows(Compare, reinterpret_cast<LPARAM>(&search)), search.found; });
    return search.found;
  }
  HWND Control(int id) const {
    const HWND main = Main();
    Search search{mProcess.dwProcessId, L"", id};
    Until([&] { return EnumChildWindows(main, Compare, reinterpret_cast<LPARAM>(&search)), search.found; });
    return search.found;
  }
  /// A pause, by the keyboard.
  void Insert() const {
    const HWND tree = Control(IDC_IG_TEMPLATES);
    const auto next = [&](WPARAM way, LRESULT from) {
      return SendMessageW(tree, TVM_GETNEXTITEM, way, from);
    };
    const LRESULT pause = next(TVGN_CHILD, next(TVGN_NEXT, next(TVGN_ROOT, 0)));
    SendMessageW(tree, TVM_SELECTITEM, TVGN_CARET, pause);
    SendMessageW(tree, WM_KEYDOWN, VK_F6, 1);
  }
  LRESULT Rows() const { return SendMessageW(Control(IDC_IG_SEQUENCE), LVM_GETITEMCOUNT, 0, 0); }
  /// A thread that begins nowhere.
  void Crash() const {
    const HANDLE thread = CreateRemoteThread(mProcess.hProcess, nullptr, 0, nullptr, nullptr, 0, nullptr);
    ASSERT_NE(thread, nullptr);
    CloseHandle(thread);
  }
  DWORD End() const {
    DWORD status = 0;
    EXPECT_EQ(WaitForSingleObject(mProcess.hProcess, 70'000), WAIT_OBJECT_0);
    GetExitCodeProcess(mProcess.hProcess, &status);
    return status;
  }

 private:
  PROCESS_INFORMATION mProcess = {};
};

/// All of the files below a folder whose names end like this.
std::string ReadAll(const fs::path& folder, const char* end) {
  std::string text;
  std::error_code ignored;
  for (const auto& file : fs::recursive_directory_iterator(folder, ignored))
    if (file.path().string().ends_with(end)) text += NTest::ReadFile(file.path());
  return text;
}

TEST(WorkbenchCrash, IsToldAndLosesNothing) {
  const NTest::TestFolder folder;
  SetEnvironmentVariableW(L"LOCALAPPDATA", folder.Path().c_str());
  const auto state = folder / "ostrel";
  const auto file =
      NTest::WriteFile(folder / "plant.json", R"({"format": 1, "variant": "halvard", "language": 1,
      "numberBase": 10, "channels": [{"number": 1, "bus": "virtual"}], "blocks": [
      {"progId": "HarlowPlugIn.CANopenIG", "settings": {"Name": "Sender"},
       "window": {"x": 300, "y": 0, "width": 600, "height": 400}}]})");
  const auto isKept = [&](const char* word) {
    return Until([&] { return ReadAll(state / "rescue", "contents.txt").find(word) != std::string::npos; });
  };
  const std::string saved = NTest::ReadFile(file);
  {
    const RealProgram program(file);
    program.Insert();
    SendMessageW(program.Main(), WM_COMMAND, NWorkbench::kOptionsHexadecimal, 0);
    EXPECT_EQ(program.Rows(), 1);
    ASSERT_TRUE(isKept("modified 1"));
    program.Crash();
    EXPECT_THAT(Answer(IDYES), AllOf(HasSubstr(L"exception C0000005"), HasSubstr(L"Keep it")));
    EXPECT_EQ(program.End(), STATUS_ACCESS_VIOLATION);
    EXPECT_EQ(ReadAll(state, ".dmp").substr(0, 4), "MDMP");
    EXPECT_THAT(ReadAll(state, ".txt"), HasSubstr("has crashed"));
  }
  {
    const RealProgram program(file);
    EXPECT_THAT(Answer(IDYES), AllOf(HasSubstr(L"plant.json"), HasSubstr(L"|&Take up")));
    EXPECT_TRUE(Until([&] { return program.Rows() == 1; }));
    EXPECT_THAT(TextOf(program.Main(), 0), HasSubstr(L"plant.json*"));
    EXPECT_EQ(NTest::ReadFile(file), saved);
    SendMessageW(program.Main(), WM_COMMAND, NWorkbench::kFileSave, 0);
    EXPECT_THAT(NTest::ReadFile(file), HasSubstr("\"numberBase\": 16"));
    ASSERT_TRUE(isKept("modified 0")) << "the lists are not saved yet";
  }
  {  // which was killed
    const RealProgram program(file);
    EXPECT_THAT(Answer(IDCANCEL), HasSubstr(L"|&Later"));
    EXPECT_EQ(program.Rows(), 0);
  }
  const RealProgram program(file);
  EXPECT_THAT(Answer(IDNO), HasSubstr(L"|&Discard"));
  EXPECT_EQ(program.Rows(), 0);
  EXPECT_EQ(ReadAll(state / "rescue", ""), "");
  // Nothing is unsaved: nothing is asked for.
  program.Crash();
  EXPECT_THAT(Answer(IDOK), AllOf(HasSubstr(L"crashed"), Not(HasSubstr(L"Keep it"))));
}

}  // namespace
