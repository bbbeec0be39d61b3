// asio's header comes first: it brings the socket headers, which must precede those of Windows.
#include "host/workbench/win/window_loop.h"

#include <windows.h>

#include <commctrl.h>
#include <shellapi.h>

#include <cwchar>
#include <stdexcept>

#include "host/runtime/crash_report.h"
#include "host/runtime/text.h"
#include "host/workbench/texts.h"
#include "host/workbench/win/crash_dialog.h"
#include "host/workbench/win/main_window.h"

namespace {

std::filesystem::path ProgramFolder() {
  std::wstring path(32768, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return std::filesystem::path(path).parent_path();
}

std::vector<std::wstring> Arguments() {
  int count = 0;
  wchar_t** const values = CommandLineToArgvW(GetCommandLineW(), &count);
  if (!values) return {};
  const std::vector<std::wstring> arguments(values + 1, values + count);
  LocalFree(values);
  return arguments;
}

// A file alone is a configuration: it may have been dropped on the program.
NWorkbench::StartOptions ParseArguments(const std::vector<std::wstring>& arguments) {
  NWorkbench::StartOptions options;
  options.folder = ProgramFolder();
  options.module = options.folder / L"Ostrel.hpi";
  for (std::size_t position = 0; position < arguments.size(); ++position) {
    const std::wstring& name = arguments[position];
    const auto value = [&] {
      if (++position == arguments.size()) {
        throw std::runtime_error(NRuntime::ToUtf8(name) + ": a value is wanted behind it");
      }
      return std::filesystem::absolute(arguments[position]);
    };
    if (name == L"--start") {
      options.start = true;
    } else if (name == L"--config") {
      options.configuration = value();
    } else if (name == L"--module") {
      options.module = value();
    } else if (name.rfind(L"--", 0) == 0 || !options.configuration.empty()) {
      throw std::runtime_error(NRuntime::ToUtf8(name) + ": not known here");
    } else {
      options.configuration = std::filesystem::absolute(name);
    }
  }
  return options;
}

int RunMessages(NWorkbench::MainWindow& window) {
  MSG message = {};
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    if (window.Translate(message)) continue;
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return static_cast<int>(message.wParam);
}

// The command line that this program has given itself.
bool TellOfCrash(const std::vector<std::wstring>& arguments) {
  if (arguments.size() != 4 || arguments[0] != NWorkbench::CrashNotice::kOption) return false;
  const auto language = static_cast<std::uint32_t>(std::wcstoul(arguments[3].c_str(), nullptr, 10));
  NWorkbench::ShowCrashDialog({arguments[1], NRuntime::ToUtf8(arguments[2]), language},
                              NWorkbench::RescueRoot(NRuntime::StateFolder()));
  return true;
}

// What the window throws later is not caught: a crash leaves the unsaved work, an end in order would not.
std::unique_ptr<NWorkbench::MainWindow> MakeWindow(const NWorkbench::StartOptions& options) {
  try {
    return std::make_unique<NWorkbench::MainWindow>(options);
  } catch (const std::exception& error) {
    NWorkbench::Ask(nullptr, NRuntime::ToWide(error.what()), MB_OK | MB_ICONERROR);
    return nullptr;
  }
}

}  // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int show) {
  if (TellOfCrash(Arguments())) return 0;
  const auto report = NRuntime::ReportCrashes("ostrel-workbench", OSTREL_VERSION, NRuntime::StateFolder(),
                                              NWorkbench::StartCrashDialog);
  const INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_WIN95_CLASSES | ICC_STANDARD_CLASSES};
  InitCommonControlsEx(&controls);
  NWorkbench::StartOptions options;
  try {
    options = ParseArguments(Arguments());
  } catch (const std::runtime_error& error) {
    NWorkbench::Ask(nullptr,
                    NWorkbench::Text(NWorkbench::TextId::BadCommandLine, NRuntime::ToWide(error.what())),
                    MB_OK | MB_ICONERROR);
    return 2;
  }
  options.state = NRuntime::StateFolder();
  options.report = report;
  const auto window = MakeWindow(options);
  if (!window) return 1;
  window->Begin(show);
  return RunMessages(*window);
}
