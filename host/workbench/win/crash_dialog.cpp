#include "host/workbench/win/crash_dialog.h"

#include <windows.h>

#include <algorithm>

#include "host/runtime/file_text.h"
#include "host/runtime/text.h"
#include "host/workbench/rescue_folder.h"
#include "host/workbench/texts.h"
#include "host/workbench/win/window.h"

namespace NWorkbench {
namespace {

constexpr std::size_t kLongestReport = std::size_t{1} << 20;
constexpr int kAttempts = 900;  // longer than a crashed program stays
constexpr DWORD kPause_ms = 100;

wchar_t gCommand[32768];

// The first line behind the name of the program, and the second: what an exception says.
std::wstring WhatHappened(const std::filesystem::path& report) {
  const auto read = NRuntime::ReadTextFile(report, kLongestReport);
  std::string text = read.text.substr(0, read.text.find('\n', read.text.find('\n') + 1));
  std::erase(text, '\r');
  while (!text.empty() && text.back() == '\n') text.pop_back();
  const std::size_t colon = text.find(": ");
  return NRuntime::ToWide(colon == std::string::npos ? text : text.substr(colon + 2));
}

// The crashed program may still be writing its dump.
void Discard(const std::filesystem::path& root, const std::string& name) {
  for (int attempt = 0; attempt < kAttempts && RescueFolder::IsLeft(root, name); ++attempt) {
    if (auto found = RescueFolder::Claim(root, name)) return found->Discard();
    Sleep(kPause_ms);
  }
}

}  // namespace

std::filesystem::path RescueRoot(const std::filesystem::path& state) { return state / L"rescue"; }

void PrepareCrashDialog(const CrashNotice& notice) {
  std::wstring program(32768, L'\0');
  program.resize(GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size())));
  const std::wstring command = L"\"" + program + L"\" " + CrashNotice::kOption + L" \"" +
                               notice.report.wstring() + L"\" " + NRuntime::ToWide(notice.folder) + L" " +
                               std::to_wstring(notice.language);
  gCommand[0] = L'\0';
  if (command.size() < std::size(gCommand)) std::copy_n(command.c_str(), command.size() + 1, gCommand);
}

void StartCrashDialog() {
  if (!gCommand[0]) return;
  STARTUPINFOW start = {};
  start.cb = sizeof start;
  PROCESS_INFORMATION started = {};
  CreateProcessW(nullptr, gCommand, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &started);
}

// A program that starts meanwhile offers the copy as well; the answer that comes first holds.
void ShowCrashDialog(const CrashNotice& notice, const std::filesystem::path& root) {
  UseTexts(notice.language);
  const std::wstring story = Text(TextId::Crashed, WhatHappened(notice.report), notice.report.wstring());
  if (!RescueFolder::IsLeft(root, notice.folder)) {
    Ask(nullptr, story, MB_OK | MB_ICONERROR | MB_SETFOREGROUND);
  } else if (Ask(nullptr, story + L"\n\n" + Text(TextId::CrashedAskKeep),
                 MB_YESNO | MB_ICONERROR | MB_SETFOREGROUND) == IDNO) {
    Discard(root, notice.folder);
  }
}

}  // namespace NWorkbench
