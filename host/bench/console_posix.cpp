#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <csignal>

#include "host/bench/console.h"

namespace NBench {

namespace {

// A program may be started without some of its standard files. What it opens itself would take their numbers:
// the loop would be read as input, a log would get what is printed.
void FillStandardFiles() {
  int file = open("/dev/null", O_RDONLY);
  while (file >= 0 && file <= STDERR_FILENO) file = open("/dev/null", O_RDONLY);
  if (file > STDERR_FILENO) close(file);
}

}  // namespace

void PrepareConsole() {
  FillStandardFiles();
  std::signal(SIGPIPE, SIG_IGN);
}

std::vector<std::string> CommandLineArguments(int count, char** values) {
  return count > 1 ? std::vector<std::string>(values + 1, values + count) : std::vector<std::string>();
}

std::filesystem::path ProgramFolder() {
  std::error_code ignored;
  return std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path();
}

bool IsTerminal(std::FILE* stream) { return isatty(fileno(stream)) != 0; }

TerminalSize SizeOfTerminal(std::FILE* stream) {
  winsize size = {};
  if (ioctl(fileno(stream), TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) return {};
  return {size.ws_col, size.ws_row};
}

}  // namespace NBench
