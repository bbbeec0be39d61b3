#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <memory>

#include "host/bench/console.h"
#include "host/runtime/text.h"

namespace NBench {

void PrepareConsole() {
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
  SetConsoleOutputCP(CP_UTF8);
}

// main() gets its arguments in the code page of the system, which does not hold every file name.
std::vector<std::string> CommandLineArguments(int, char**) {
  int count = 0;
  const std::unique_ptr<LPWSTR, decltype(&LocalFree)> values(CommandLineToArgvW(GetCommandLineW(), &count),
                                                             &LocalFree);
  std::vector<std::string> arguments;
  for (int position = 1; values && position < count; ++position) {
    arguments.push_back(NRuntime::ToUtf8(values.get()[position]));
  }
  return arguments;
}

std::filesystem::path ProgramFolder() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD size = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (size < path.size()) {
      path.resize(size);
      return std::filesystem::path(path).parent_path();
    }
    path.resize(path.size() * 2);
  }
}

bool IsTerminal(std::FILE* stream) { return _isatty(_fileno(stream)) != 0; }

}  // namespace NBench
