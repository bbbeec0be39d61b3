#include "host/workbench/win/window_loop.h"

#include "host/workbench/win/main_window.h"

#include <algorithm>

#include "host/runtime/text.h"
#include "host/workbench/texts.h"
#include "host/workbench/win/channels_dialog.h"
#include "host/workbench/win/command_ids.h"
#include "sdk/unsaved_work.h"

namespace NWorkbench {
namespace {

constexpr wchar_t kVersion[] = L"" OSTREL_VERSION;

std::wstring Words(const std::exception& error) { return NRuntime::ToWide(error.what()); }

// The waiting pointer, where something takes long.
class WaitCursor {
 public:
  WaitCursor() : mBefore(SetCursor(LoadCursorW(nullptr, IDC_WAIT))) {}
  ~WaitCursor() { SetCursor(mBefore); }
  WaitCursor(const WaitCursor&) = delete;
  WaitCursor& operator=(const WaitCursor&) = delete;

 private:
  HCURSOR mBefore;
};

}  // namespace

bool MainWindow::OnCommand(int id) {
  if (id >= kFirstChild) return false;
  if (mWorkbench->IsChanging() && id != kMeasureStop) return true;
  if (OnFileCommand(id) || OnOptionCommand(id) || OnWindowCommand(id) || OnBlockCommand(id)) return true;
  if (id == kMeasureStart) return StartMeasurement(), true;
  if (id == kMeasureStop) return mWorkbench->Stop(), true;
  if (!mCommands->Execute(id, mSetup->Selected().channel)) return false;
  RefreshLater();
  return true;
}

bool MainWindow::OnFileCommand(int id) {
  if (id == kFileNew) return New(), true;
  if (id == kFileOpen) return OpenAsked(), true;
  if (id == kFileSave || id == kFileSaveAs) return Save(id == kFileSaveAs), true;
  if (id == kFileExit) return Close(), true;
  if (id < kFirstRecent || id > kLastRecent) return false;
  const auto position = static_cast<std::size_t>(id - kFirstRecent);
  const auto files = mRecent.Files();
  if (position < files.size() && ConfirmStop() && ConfirmDiscard()) Open(files[position]);
  return true;
}

bool MainWindow::OnOptionCommand(int id) {
  using Document = NConfiguration::Document;
  if (id == kOptionsHexadecimal) {
    mWorkbench->SetNumberBase(mWorkbench->Settings().numberBase == 16 ? 10 : 16);
    return true;
  }
  if (id == kOptionsLargeIcons) return mWorkbench->SetLargeIcons(!mWorkbench->Settings().largeIcons), true;
  if (id < kOptionsChannels || id > kOptionsGerman) return false;
  if (mWorkbench->IsMeasuring()) return true;
  if (id == kOptionsChannels) return ShowChannels(), true;
  if (!ConfirmLeaving(mWorkbench->Blocks())) return true;
  if (id == kOptionsHalvard)
    ChangeSettings([](Document& document) { document.variant = NSdk::kHostHalvard; });
  if (id == kOptionsTesmond)
    ChangeSettings([](Document& document) { document.variant = NSdk::kHostTesmond; });
  if (id == kOptionsEnglish) ChangeSettings([](Document& document) { document.language = kEnglish; });
  if (id == kOptionsGerman) ChangeSettings([](Document& document) { document.language = kGerman; });
  return true;
}

bool MainWindow::OnWindowCommand(int id) {
  if (id == kWindowSetup) return mSetup->Activate(), true;
  if (id == kWindowTrace) return mTrace->Activate(), true;
  if (id == kWindowMessages) return mMessages->Activate(), true;
  if (id == kWindowCascade) return ::SendMessageW(mClient, WM_MDICASCADE, 0, 0), true;
  if (id == kWindowTile) return ::SendMessageW(mClient, WM_MDITILE, MDITILE_VERTICAL, 0), true;
  if (id != kHelpAbout) return false;
  const std::wstring module = mWorkbench->ModuleFault().empty() ? Text(TextId::ModuleWorks)
                                                                : NRuntime::ToWide(mWorkbench->ModuleFault());
  Ask(Handle(), Text(TextId::AboutText, kVersion, module), MB_OK | MB_ICONINFORMATION);
  return true;
}

// For the block that is selected in the setup window.
bool MainWindow::OnBlockCommand(int id) {
  if (id != kBlockOpen && id != kBlockConfigure && id != kBlockRemove) return false;
  const std::size_t position = mSetup->Selected().block;
  if (position >= mWorkbench->Blocks().size()) return true;
  if (id == kBlockOpen) OpenBlock(position, false);
  if (id == kBlockRemove && ConfirmLeaving({mWorkbench->Blocks()[position]})) mWorkbench->Remove(position);
  if (id == kBlockConfigure) {
    const auto events = NRuntime::Query<NSdk::IUIEventsEx>(mWorkbench->Blocks()[position].object);
    if (events) events->Configure(Handle());
    RefreshLater();
  }
  return true;
}

// ---- configuration

bool MainWindow::ConfirmStop() {
  if (!mWorkbench->IsMeasuring()) return true;
  if (Ask(Handle(), Text(TextId::AskStop), MB_YESNO | MB_ICONQUESTION) != IDYES) return false;
  mWorkbench->Stop();
  return true;
}

// Blocks go first: what the user answers may change their settings.
bool MainWindow::ConfirmDiscard() {
  if (!ConfirmLeaving(mWorkbench->Blocks())) return false;
  if (!mWorkbench->IsModified()) return true;
  const auto& file = mWorkbench->File();
  const std::wstring name = file.empty() ? std::wstring(Text(TextId::Untitled)) : file.filename().wstring();
  const int answer = Ask(Handle(), Text(TextId::AskSave, name), MB_YESNOCANCEL | MB_ICONQUESTION);
  return answer == IDNO || (answer == IDYES && Save(false));
}

bool MainWindow::Save(bool askName) {
  std::filesystem::path file = mWorkbench->File();
  if (file.empty() || askName) file = AskForFile(Handle(), true, file);
  if (file.empty()) return false;
  RememberWindows();
  try {
    mWorkbench->Save(file);
  } catch (const std::runtime_error& error) {
    Ask(Handle(), Text(TextId::CannotSave, Words(error)), MB_OK | MB_ICONERROR);
    return false;
  }
  mFiles.Follow(UsedFiles(*mWorkbench));  // whoever changes it from now on is somebody else
  mRecent.Add(mWorkbench->File());
  RefreshLater();
  return true;
}

// Blocks may hold work that the configuration does not keep. The questions let other things happen, so the
// blocks are held meanwhile.
bool MainWindow::ConfirmLeaving(std::vector<PlacedBlock> blocks) {
  for (const PlacedBlock& block : blocks) {
    const auto unsaved = NRuntime::Query<NSdk::IUnsavedWork>(block.object);
    if (unsaved && unsaved->ConfirmLeaving(Handle()) == S_FALSE) return false;
  }
  return true;
}

void MainWindow::New() {
  if (!ConfirmStop() || !ConfirmDiscard()) return;
  mWorkbench->New(mWorkbench->Settings());
  AfterOpening();
}

void MainWindow::OpenAsked() {
  if (!ConfirmStop() || !ConfirmDiscard()) return;
  const auto file = AskForFile(Handle(), false, {});
  if (!file.empty()) Open(file);
}

bool MainWindow::Open(const std::filesystem::path& file) {
  try {
    const WaitCursor waiting;
    mWorkbench->Open(file);
  } catch (const std::runtime_error& error) {
    UseTexts(mWorkbench->Settings().language);
    Ask(Handle(), Text(TextId::CannotOpen, Words(error)), MB_OK | MB_ICONERROR);
    mRecent.Remove(file);
    RefreshLater();
    return false;
  }
  mRecent.Add(mWorkbench->File());
  AfterOpening();
  return true;
}

void MainWindow::AfterOpening() {
  mTrace->Restart();
  RefreshAll();
  RestoreWindows();
  if (!mWorkbench->ModuleFault().empty()) {
    Ask(Handle(), Text(TextId::NoModule, NRuntime::ToWide(mWorkbench->ModuleFault())),
        MB_OK | MB_ICONWARNING);
  }
  OpenRememberedBlocks();
  SettleLater();
}

void MainWindow::OpenRememberedBlocks() {
  for (std::size_t position = 0; position < mWorkbench->Blocks().size(); ++position) {
    const auto& place = mWorkbench->Blocks()[position].stored.window;
    if (place && place->open) OpenBlock(position, true);
  }
}

void MainWindow::ChangeSettings(const std::function<void(NConfiguration::Document&)>& change) {
  const WaitCursor waiting;
  RememberWindows();
  NConfiguration::Document document = mWorkbench->Settings();
  change(document);
  mWorkbench->Change(document);
  OpenRememberedBlocks();
  RefreshLater();
}

void MainWindow::ShowChannels() {
  ChannelsDialog dialog(*mWorkbench);
  if (dialog.Run(Handle())) RefreshLater();
}

void MainWindow::Close() {
  if (!IsWindowEnabled(Handle()) || mWorkbench->IsChanging())
    return;  // a dialog or message is waiting for its answer
  if (!ConfirmStop() || !ConfirmDiscard()) return;
  if (mKeeper) mKeeper->Discard();
  mKeeper.reset();
  mRemembersBlocks = false;
  mBlocks.clear();  // while what they are windows in still stands
  DestroyWindow(Handle());
}

// ---- measurement

void MainWindow::StartMeasurement() {
  if (mWorkbench->IsMeasuring()) return;
  const WaitCursor waiting;
  mWorkbench->Start();
}

// ---- blocks

void MainWindow::OpenBlock(std::size_t position, bool remembered) {
  const PlacedBlock& placed = mWorkbench->Blocks()[position];
  const IUnknown* const object = placed.object.Get();
  const auto known = mBlocks.find(object);
  if (known != mBlocks.end()) return known->second->Activate();
  const auto events = NRuntime::Query<NSdk::IUIEventsEx>(placed.object);
  try {
    if (!events) throw std::runtime_error(NRuntime::ToUtf8(Text(TextId::BlockNoWindow)));
    auto closed = [this, object] {
      RememberWindows();
      const auto window = std::move(mBlocks[object]);
      mBlocks.erase(object);
      if (PlacedBlock* block = mWorkbench->Find(object); block && block->stored.window) {
        block->stored.window->open = false;
      }
    };
    mBlocks[object] = std::make_unique<BlockWindow>(mClient, events, mWorkbench->CaptionOf(placed),
                                                    placed.stored.window, std::move(closed));
  } catch (const std::runtime_error& error) {
    mBlocks.erase(object);
    if (!remembered) Ask(Handle(), Words(error), MB_OK | MB_ICONINFORMATION);
  }
}

void MainWindow::RememberWindows() {
  for (const auto& [object, window] : mBlocks) {
    PlacedBlock* const block = mWorkbench->Find(object);
    if (block && window) block->stored.window = window->Place();
  }
  mWorkbench->SetWindows(OwnPlace(), InnerPlaces());
}

NConfiguration::Window MainWindow::OwnPlace() const {
  NConfiguration::Window own = PlaceOf(Handle());
  own.open = true;
  own.minimized = false;
  return own;
}

std::map<std::string, NConfiguration::Window> MainWindow::InnerPlaces() const {
  std::map<std::string, NConfiguration::Window> inner;
  for (const auto& [name, window] : InnerWindows()) inner[name] = PlaceOf(window->Handle());
  return inner;
}

NConfiguration::Document MainWindow::CaptureWithWindows() const {
  NConfiguration::Document document = mWorkbench->Capture();
  document.window = OwnPlace();
  document.windows = InnerPlaces();
  const auto& blocks = mWorkbench->Blocks();
  for (std::size_t position = 0; position < blocks.size(); ++position) {
    const auto window = mBlocks.find(blocks[position].object.Get());
    if (window != mBlocks.end() && window->second) document.blocks[position].window = window->second->Place();
  }
  return document;
}

// Those of which the configuration says nothing stay where they are.
void MainWindow::RestoreWindows() {
  if (const auto& own = mWorkbench->Settings().window) PutAt(Handle(), *own);
  const auto places = mWorkbench->Settings().windows;
  for (const auto& [name, window] : InnerWindows()) {
    const auto place = places.find(name);
    if (place == places.end()) continue;
    PutAt(window->Handle(), place->second);
    if (!place->second.open) window->PutAway();
  }
}

namespace {

// Collects what a module adds to a context menu.
class ContextCommands final : public NRuntime::Implements<NSdk::ICommandList> {
 public:
  HRESULT STDMETHODCALLTYPE AppendCommand(const wchar_t* name) override {
    if (!name) return E_POINTER;
    names.emplace_back(name);
    return S_OK;
  }

  std::vector<std::wstring> names;
};

}  // namespace

// In a network the types of blocks that belong into a simulation are offered as well.
void MainWindow::ShowSetupMenu(POINT screen) {
  const SetupWindow::Place place = mSetup->Selected();
  const auto list = NRuntime::Make<ContextCommands>();
  mCommands->Update();
  if (mWorkbench->Extensions()) {
    mWorkbench->Extensions()->AddContextCommands(NSdk::IidOf<NSdk::ICommandList>(), list.Get(),
                                                 mSetup->Selection().Get());
  }
  const HMENU menu = CreatePopupMenu();
  if (place.block != SetupWindow::Place::kNoBlock) {
    AppendMenuW(menu, MF_STRING, kBlockOpen, Text(TextId::BlockOpen));
    AppendMenuW(menu, MF_STRING, kBlockConfigure, Text(TextId::BlockConfigure));
    const UINT state = mWorkbench->IsMeasuring() ? MF_GRAYED : MF_ENABLED;
    AppendMenuW(menu, MF_STRING | state, kBlockRemove, Text(TextId::BlockRemove));
    SetMenuDefaultItem(menu, kBlockOpen, FALSE);
    AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
  }
  mCommands->Append(menu, list->names);
  if (place.kind == SetupWindow::Place::Kind::Simulation)
    mCommands->Append(menu, mCommands->SimulationCommands());
  OnCommand(Choose(menu, screen));
}

}  // namespace NWorkbench
