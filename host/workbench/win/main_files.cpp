// asio's header comes first: it brings the socket headers, which must precede those of Windows.
#include "host/workbench/win/window_loop.h"

#include "host/workbench/win/main_window.h"

#include "host/runtime/text.h"
#include "host/workbench/texts.h"
#include "sdk/work_file.h"

// Files that other programs change while they are open here.

namespace NWorkbench {
namespace {

constexpr std::chrono::seconds kPause{2};

bool IsUnsaved(const PlacedBlock& block) { return UnsavedStateOf(block) != 0; }

}  // namespace

// During a measurement nothing is read again; the user hears of the change all the same.
void MainWindow::LookAtFiles() {
  if (mWorkbench->IsChanging()) return;
  const auto now = std::chrono::steady_clock::now();
  mNextLook = now + kPause;
  mFiles.Follow(UsedFiles(*mWorkbench));
  for (const auto& [used, vanished] : mFiles.Look(now)) {
    if (vanished) {
      OnTrouble(NRuntime::ToUtf8(Text(TextId::FileVanished, used.file.wstring())));
    } else if (mWorkbench->IsMeasuring()) {
      OnTrouble(NRuntime::ToUtf8(Text(TextId::FileChangedLater, used.file.wstring())));
    }
  }
  while (CanAskAboutFiles()) {
    const auto changed = mFiles.TakeChanged();
    if (!changed) break;
    OfferReload(*changed);
    mFiles.Follow(UsedFiles(*mWorkbench));  // what is read anew is known
  }
}

// A question must not come between a user and a dialog, a menu or something that is being dragged.
bool MainWindow::CanAskAboutFiles() const {
  return !mWorkbench->IsMeasuring() && !mWorkbench->IsChanging() && !mMenuIsOpen &&
         IsWindowEnabled(Handle()) && !GetCapture();
}

bool MainWindow::WouldLoseWork(const UsedFile& file) {
  const auto& blocks = mWorkbench->Blocks();
  if (file.role == FileRole::Configuration)
    return mWorkbench->IsModified() || std::any_of(blocks.begin(), blocks.end(), IsUnsaved);
  const PlacedBlock* const block = mWorkbench->Find(file.block);
  return block && IsUnsaved(*block);
}

void MainWindow::OfferReload(const UsedFile& file) {
  TextId question = TextId::FileChangedAsk;
  if (file.role == FileRole::Database) question = TextId::DatabaseChangedAsk;
  if (file.role == FileRole::Description) question = TextId::DescriptionChangedAsk;
  std::wstring text = Text(question, file.file.wstring());
  if (WouldLoseWork(file)) text += L"\n\n" + std::wstring(Text(TextId::FileChangedLoses));
  if (Ask(Handle(), text, MB_YESNO | MB_ICONQUESTION) != IDYES || mWorkbench->IsMeasuring()) return;
  try {
    Reload(file);
  } catch (const std::runtime_error& error) {
    Ask(Handle(), Text(TextId::FileNotReloaded, NRuntime::ToWide(error.what())), MB_OK | MB_ICONERROR);
  }
}

// Throws std::runtime_error: it cannot be read, and everything stays as it is.
void MainWindow::Reload(const UsedFile& file) {
  if (file.role == FileRole::Configuration) {
    mWorkbench->Open(file.file);
    return AfterOpening();
  }
  if (file.role != FileRole::BlockWork) return mWorkbench->ReadDatabasesAgain();
  const PlacedBlock* const block = mWorkbench->Find(file.block);  // it may have gone behind the question
  const auto work = block ? NRuntime::Query<NSdk::IWorkFile>(block->object) : nullptr;
  NRuntime::ReceivedText reason;
  if (work && FAILED(work->ReadAgain(reason.Out())))
    throw std::runtime_error(NRuntime::PathText(file.file) + ": " + NRuntime::ToUtf8(reason.Text()));
}

}  // namespace NWorkbench
