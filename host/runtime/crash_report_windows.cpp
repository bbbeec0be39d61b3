#include <windows.h>

#include <dbghelp.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include "host/runtime/crash_report.h"
#include "host/runtime/uncaught_exception.h"

namespace NRuntime {
namespace {

// All that is written at the time of a crash is made beforehand or on the stack: nothing can be allocated
// then.
wchar_t gFolder[MAX_PATH * 2];
wchar_t gText[MAX_PATH * 2];
wchar_t gDump[MAX_PATH * 2];
char gFileName[MAX_PATH];  // of the text, to be said
char gHeading[256];
char gException[512];
void (*gAfterwards)() = nullptr;
LONG gThread = 0;  // that has crashed
constexpr USHORT kMostCalls = 62;
constexpr ULONG kRoom = 128 * 1024;  // on the stack, kept for the report of its overflow
constexpr DWORD kPatience_ms = 60'000;
constexpr DWORD kAborted = 0xE0000001;  // of our own

using WriteDump = decltype(&MiniDumpWriteDump);
WriteDump gWriteDump = nullptr;  // loaded beforehand: the loader's lock may be what was being held

void Say(HANDLE file, const char* text) {
  DWORD written = 0;
  WriteFile(file, text, static_cast<DWORD>(lstrlenA(text)), &written, nullptr);
}

void SayAddress(HANDLE file, const void* address) {
  HMODULE module = nullptr;
  char name[MAX_PATH] = "?";
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     static_cast<LPCWSTR>(address), &module);
  if (module) GetModuleFileNameA(module, name, MAX_PATH);
  char line[MAX_PATH + 64];
  const auto offset = reinterpret_cast<std::uintptr_t>(address) - reinterpret_cast<std::uintptr_t>(module);
  std::snprintf(line, sizeof line, "%s+0x%llx\r\n", name, static_cast<unsigned long long>(offset));
  Say(file, line);
}

void WriteText(const EXCEPTION_POINTERS& fault, HANDLE file) {
  char line[128];
  std::snprintf(line, sizeof line, "exception %08lX\r\n", fault.ExceptionRecord->ExceptionCode);
  Say(file, gHeading);
  Say(file, line);
  Say(file, gException);
  Say(file, "\r\n");
  SayAddress(file, fault.ExceptionRecord->ExceptionAddress);
  void* calls[kMostCalls];
  const USHORT count = RtlCaptureStackBackTrace(0, kMostCalls, calls, nullptr);
  for (USHORT position = 0; position < count; ++position) SayAddress(file, calls[position]);
}

HANDLE Create(const wchar_t* file) {
  return CreateFileW(file, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
}

struct Dump {
  EXCEPTION_POINTERS* fault;
  DWORD thread;
};

void WriteDumpOf(const Dump& dump) {
  const HANDLE file = gWriteDump ? Create(gDump) : INVALID_HANDLE_VALUE;
  if (file == INVALID_HANDLE_VALUE) return;
  MINIDUMP_EXCEPTION_INFORMATION information = {dump.thread, dump.fault, FALSE};
  const BOOL written = gWriteDump(GetCurrentProcess(), GetCurrentProcessId(), file, MiniDumpNormal,
                                  &information, nullptr, nullptr);
  CloseHandle(file);
  if (!written) DeleteFileW(gDump);
}

// In a thread of its own: the stack of the one that has crashed may have run out.
DWORD WINAPI DoTheRest(void* argument) {
  if (gAfterwards) gAfterwards();  // a dump may take its time
  WriteDumpOf(*static_cast<const Dump*>(argument));
  return 0;
}

// Only the first crash is told: what crashes behind it may be its consequence.
LONG WINAPI OnCrash(EXCEPTION_POINTERS* fault) {
  const auto thread = static_cast<LONG>(GetCurrentThreadId());
  const LONG first = InterlockedCompareExchange(&gThread, thread, 0);
  if (first == thread) return EXCEPTION_EXECUTE_HANDLER;
  if (first != 0) Sleep(INFINITE);
  CreateDirectoryW(gFolder, nullptr);
  const HANDLE text = Create(gText);
  if (text == INVALID_HANDLE_VALUE) return EXCEPTION_CONTINUE_SEARCH;
  WriteText(*fault, text);
  CloseHandle(text);
  Dump dump = {fault, GetCurrentThreadId()};
  if (const HANDLE rest = CreateThread(nullptr, 0, DoTheRest, &dump, 0, nullptr)) {
    WaitForSingleObject(rest, kPatience_ms);
    CloseHandle(rest);
  }
  const HANDLE error = GetStdHandle(STD_ERROR_HANDLE);
  if (error && error != INVALID_HANDLE_VALUE) {
    Say(error, gHeading);
    Say(error, "\r\nwhat is known of it is in ");
    Say(error, gFileName);
    Say(error, "\r\n");
  }
  return EXCEPTION_EXECUTE_HANDLER;  // ends the program, with the code as its status
}

// What was thrown is lost once the system's exception comes; an abort would come without one.
[[noreturn]] void OnTerminate() {
  DescribeUncaughtException(gException, "\r\n");
  RaiseException(kAborted, EXCEPTION_NONCONTINUABLE, 0, nullptr);
  std::abort();
}

// The module aborts as well, whose library of C++ has a handler of its own for what nobody catches.
void OnAbort(int) { RaiseException(kAborted, EXCEPTION_NONCONTINUABLE, 0, nullptr); }

void CopyPath(wchar_t (&to)[MAX_PATH * 2], const std::filesystem::path& path) {
  lstrcpynW(to, path.c_str(), MAX_PATH * 2);
}

}  // namespace

std::filesystem::path ReportCrashes(const char* program, const char* version,
                                    const std::filesystem::path& folder, void (*afterwards)()) {
  if (folder.empty()) return {};
  gAfterwards = afterwards;
  CopyPath(gFolder, folder);
  const std::string name = std::string(program) + "-crash-" + std::to_string(GetCurrentProcessId());
  CopyPath(gText, folder / (name + ".txt"));
  CopyPath(gDump, folder / (name + ".dmp"));
  WideCharToMultiByte(CP_UTF8, 0, gText, -1, gFileName, MAX_PATH, nullptr, nullptr);
  std::snprintf(gHeading, sizeof gHeading, "%s %s has crashed: ", program, version);
  if (const HMODULE library = LoadLibraryW(L"dbghelp.dll")) {
    gWriteDump = reinterpret_cast<WriteDump>(
        reinterpret_cast<void (*)()>(GetProcAddress(library, "MiniDumpWriteDump")));
  }
  ULONG room = kRoom;
  SetThreadStackGuarantee(&room);
  SetUnhandledExceptionFilter(OnCrash);
  std::set_terminate(OnTerminate);
  std::signal(SIGABRT, OnAbort);
  return gText;
}

std::filesystem::path StateFolder() {
  const wchar_t* const local = _wgetenv(L"LOCALAPPDATA");
  return local && *local ? std::filesystem::path(local) / "ostrel" : std::filesystem::path();
}

}  // namespace NRuntime
