#include <execinfo.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>

#include "host/runtime/crash_report.h"
#include "host/runtime/uncaught_exception.h"

namespace NRuntime {
namespace {

// All that is written at the time of a crash is made beforehand or on the stack: nothing can be allocated
// then.
char gFile[4096];
char gHeading[256];
char gException[512];
void (*gAfterwards)() = nullptr;
constexpr std::size_t kStackSize = 64 * 1024;
alignas(16) char gStack[kStackSize];  // the program's own may be what has run out
constexpr int kMostCalls = 64;
constexpr int kSignals[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};

void Say(int file, const char* text) {
  // There is nobody left to tell when this fails.
  if (write(file, text, std::strlen(text)) < 0) return;
}

const char* NameOf(int number) {
  switch (number) {
    case SIGSEGV:
      return "a place in memory that is not the program's (SIGSEGV)";
    case SIGBUS:
      return "a place in memory that is not there (SIGBUS)";
    case SIGFPE:
      return "an impossible calculation (SIGFPE)";
    case SIGILL:
      return "an instruction that does not exist (SIGILL)";
    default:
      return "the program has given itself up (SIGABRT)";
  }
}

// Those on the way to the file; most are there.
void MakeFolders() {
  for (char* at = gFile + 1; *at; ++at) {
    if (*at != '/') continue;
    *at = '\0';
    mkdir(gFile, 0700);
    *at = '/';
  }
}

void OnCrash(int number) {
  MakeFolders();
  const int file = open(gFile, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  if (file >= 0) {
    Say(file, gHeading);
    Say(file, NameOf(number));
    Say(file, "\n");
    Say(file, gException);
    Say(file, "\n");
    void* calls[kMostCalls];
    backtrace_symbols_fd(calls, backtrace(calls, kMostCalls), file);
    close(file);
    Say(STDERR_FILENO, gHeading);
    Say(STDERR_FILENO, NameOf(number));
    Say(STDERR_FILENO, "\nwhat is known of it is in ");
    Say(STDERR_FILENO, gFile);
    Say(STDERR_FILENO, "\n");
  }
  if (gAfterwards) gAfterwards();
  // The handler was for one time: the second goes the way that the first would have gone without it.
  std::raise(number);
}

// What was thrown is lost once the signal comes.
[[noreturn]] void OnTerminate() {
  DescribeUncaughtException(gException, "\n");
  std::abort();
}

}  // namespace

std::filesystem::path ReportCrashes(const char* program, const char* version,
                                    const std::filesystem::path& folder, void (*afterwards)()) {
  if (folder.empty()) return {};
  const std::string file =
      folder / (std::string(program) + "-crash-" + std::to_string(static_cast<long>(getpid())) + ".txt");
  if (file.size() >= sizeof gFile) return {};
  gAfterwards = afterwards;
  std::snprintf(gFile, sizeof gFile, "%s", file.c_str());
  std::snprintf(gHeading, sizeof gHeading, "%s %s has crashed: ", program, version);
  void* first[1];
  backtrace(first, 1);  // the first one loads a library
  const stack_t stack = {gStack, 0, kStackSize};
  sigaltstack(&stack, nullptr);
  for (const int number : kSignals) {
    struct sigaction action = {};
    action.sa_handler = OnCrash;
    action.sa_flags = static_cast<int>(SA_ONSTACK | SA_RESETHAND | SA_NODEFER);
    sigaction(number, &action, nullptr);
  }
  std::set_terminate(OnTerminate);
  return file;
}

std::filesystem::path StateFolder() {
  const char* const state = std::getenv("XDG_STATE_HOME");
  const char* const home = std::getenv("HOME");
  if (state && *state == '/') return std::filesystem::path(state) / "ostrel";
  if (home && *home == '/') return std::filesystem::path(home) / ".local" / "state" / "ostrel";
  return {};
}

}  // namespace NRuntime
