// asio's header comes first: it brings the socket headers, which must precede those of Windows.
#include "host/workbench/win/window_loop.h"

#include "host/workbench/win/main_window.h"

#include "host/runtime/text.h"
#include "host/workbench/texts.h"
#include "host/workbench/win/crash_dialog.h"

// Unsaved work of this process, which outlives it, and that of earlier ones.

namespace NWorkbench {
namespace {

using std::chrono::steady_clock;

constexpr std::chrono::seconds kPause{2};
constexpr int kShare = 20;  // of the time, at most one part goes into copying

std::int64_t Now() {
  return std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch())
      .count();
}

// Date and time of day as the user has set them.
std::wstring TimeText(std::int64_t seconds) {
  constexpr std::int64_t kTicksPerSecond = 10'000'000, kSecondsBefore1970 = 11'644'473'600;
  ULARGE_INTEGER ticks;
  ticks.QuadPart = static_cast<ULONGLONG>((seconds + kSecondsBefore1970) * kTicksPerSecond);
  const FILETIME universal = {ticks.LowPart, ticks.HighPart};
  FILETIME local = {};
  SYSTEMTIME time = {};
  wchar_t date[64] = {}, clock[64] = {};
  FileTimeToLocalFileTime(&universal, &local);
  FileTimeToSystemTime(&local, &time);
  GetDateFormatW(LOCALE_USER_DEFAULT, DATE_SHORTDATE, &time, nullptr, date, 64);
  GetTimeFormatW(LOCALE_USER_DEFAULT, TIME_NOSECONDS, &time, nullptr, clock, 64);
  return std::wstring(date) + L" " + clock;
}

std::wstring NameOf(const std::filesystem::path& file) {
  return file.empty() ? std::wstring(Text(TextId::Untitled)) : file.wstring();
}

}  // namespace

void MainWindow::StartKeeping() {
  if (mOptions.state.empty()) return;
  mKeeper.emplace(*mWorkbench, RescueRoot(mOptions.state), GetCurrentProcessId());
  PrepareCrash();
}

void MainWindow::PrepareCrash() {
  if (mKeeper && !mOptions.report.empty())
    PrepareCrashDialog({mOptions.report, mKeeper->FolderName(), mWorkbench->Settings().language});
}

// True: one of them is open now.
bool MainWindow::OfferLeftWork() {
  if (!mKeeper) return false;
  auto left = RescueFolder::FindLeft(RescueRoot(mOptions.state));
  for (RescueFolder& folder : left) {
    try {
      const UnsavedWork work = folder.Read();
      if (mOptions.start) {  // nobody may be there to answer
        OnTrouble(NRuntime::ToUtf8(Text(TextId::RescueWaits, NameOf(work.file))));
        continue;
      }
      UseTexts(work.document.language);
      const int answer =
          AskWith(Handle(), Text(TextId::RescueAsk, NameOf(work.file), TimeText(folder.Time())),
                  {Text(TextId::RescueTakeUp), Text(TextId::RescueDiscard), Text(TextId::RescueLater)});
      if (answer == IDNO) folder.Discard();
      if (answer == IDYES) return TakeUp(folder, work), true;
    } catch (const std::runtime_error& error) {
      OnTrouble(error.what());
    }
  }
  UseTexts(mWorkbench->Settings().language);
  return false;
}

// The copy that was left goes when there is one of this process instead. It stays where a part of it found no
// place.
void MainWindow::TakeUp(RescueFolder& folder, const UnsavedWork& work) {
  const auto refused = WorkKeeper::TakeUp(*mWorkbench, work);
  AfterOpening();
  for (const std::wstring& block : refused) OnTrouble(NRuntime::ToUtf8(Text(TextId::RescueRefused, block)));
  if (KeepUnsaved() && refused.empty()) folder.Discard();
}

// False: there is no copy now of what it should be.
bool MainWindow::KeepUnsaved() {
  if (!mKeeper) return false;
  const auto begin = steady_clock::now();
  bool kept = true;
  try {
    mKeeper->Update(CaptureWithWindows(), Now());
    mKeepingFault.clear();
  } catch (const std::runtime_error& error) {
    kept = false;
    if (mKeepingFault != error.what())
      OnTrouble(NRuntime::ToUtf8(Text(TextId::RescueCannotKeep, NRuntime::ToWide(error.what()))));
    mKeepingFault = error.what();
  }
  const auto end = steady_clock::now();
  mNextKeeping = end + std::max<steady_clock::duration>(kPause, (end - begin) * kShare);
  return kept;
}

void MainWindow::KeepUnsavedInTime() {
  if (mKeeper && steady_clock::now() >= mNextKeeping) KeepUnsaved();
}

}  // namespace NWorkbench
