#include <windows.h>

#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

#include <algorithm>
#include <memory>

#include "host/bench/console.h"
#include "host/runtime/text.h"

namespace NBench {

namespace {

HANDLE HandleOf(std::FILE* stream) {
  return GetStdHandle(stream == stdout ? STD_OUTPUT_HANDLE : STD_ERROR_HANDLE);
}

// So that a console understands where to write over what it shows.
void EnableEscapes(std::FILE* stream) {
  DWORD mode = 0;
  if (!GetConsoleMode(HandleOf(stream), &mode)) return;  // no console
  SetConsoleMode(HandleOf(stream), mode | ENABLE_PROCESSED_OUTPUT | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

}  // namespace

void PrepareConsole() {
  _setmode(_fileno(stdout), _O_BINARY);
  _setmode(_fileno(stderr), _O_BINARY);
  SetConsoleOutputCP(CP_UTF8);
  EnableEscapes(stdout);
  EnableEscapes(stderr);
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

TerminalSize SizeOfTerminal(std::FILE* stream) {
  CONSOLE_SCREEN_BUFFER_INFO info = {};
  if (!GetConsoleScreenBufferInfo(HandleOf(stream), &info)) return {};
  const auto span = [](SHORT first, SHORT last) {
    return static_cast<std::size_t>(std::max(1, last - first + 1));
  };
  return {span(info.srWindow.Left, info.srWindow.Right), span(info.srWindow.Top, info.srWindow.Bottom)};
}

}  // namespace NBench
