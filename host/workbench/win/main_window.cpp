// asio's header comes first: it brings the socket headers, which must precede those of Windows.
#include "host/workbench/win/window_loop.h"

#include "host/workbench/win/main_window.h"

#include <algorithm>

#include "host/runtime/text.h"
#include "host/workbench/texts.h"
#include "host/workbench/win/command_ids.h"
#include "host/workbench/win/drawn_icons.h"

namespace NWorkbench {
namespace {

constexpr UINT_PTR kStatusTimer = 1;
constexpr UINT kStatusPeriod_ms = 250;
constexpr int kTicksPerSpan = 4;  // one second: of the bus load, and until what has changed is looked at
constexpr UINT kRefresh = WM_APP, kLook = WM_APP + 1, kSettle = WM_APP + 2;

bool IsInTask(NRuntime::IoLoop& loop) { return static_cast<WindowLoop&>(loop).IsInTask(); }

std::wstring Wide(const std::string& text) { return NRuntime::ToWide(text); }

ToolButton OwnButton(int id, TextId tip, DrawnIcon icon, bool enabled = true) {
  ToolButton button;
  button.id = id;
  button.tip = Text(tip);
  button.icon = [icon](int size) { return MakeDrawnIcon(icon, size); };
  button.image = static_cast<std::uintptr_t>(icon);
  button.enabled = enabled;
  return button;
}

std::wstring LoadText(const std::map<std::uint32_t, BusLoad>& loads) {
  std::wstring text;
  for (const auto& [channel, load] : loads) {
    if (!load.Load()) continue;
    const auto tenths = static_cast<long>(*load.Load() * 10 + 0.5);
    const std::wstring percent = std::to_wstring(tenths / 10) + L"." + std::to_wstring(tenths % 10);
    text += (text.empty() ? L"" : L"   ") + Text(TextId::StateLoad, std::to_wstring(channel), percent);
  }
  return text;
}

}  // namespace

MainWindow::MainWindow(const StartOptions& options) : mOptions(options), mKeys(MakeKeys()) {
  Window::ReportFaultsTo([this](const std::string& text) { OnTrouble(text); });
  WorkbenchOptions workbench;
  workbench.module = options.module;
  workbench.libraries = options.folder;
  workbench.makeLoop = [this] {
    return std::make_unique<WindowLoop>([this](const std::string& text) { OnTrouble(text); });
  };
  WorkbenchEvents& events = *this;
  mWorkbench = std::make_unique<Workbench>(std::move(workbench), events);
  mCommands.emplace(*mWorkbench, options.module);
  const RECT work = WorkArea(nullptr);
  const int width = std::min(Scaled(1100), static_cast<int>(work.right - work.left));
  const int height = std::min(Scaled(720), static_cast<int>(work.bottom - work.top));
  Make({L"OstrelWorkbench",
        Text(TextId::AppName),
        WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN,
        0,
        nullptr,
        {CW_USEDEFAULT, CW_USEDEFAULT, width, height},
        nullptr});
  for (const WPARAM kind : {ICON_SMALL, ICON_BIG}) SetProgramIcon(Handle(), kind);
  mWorkbench->New({});
  MakeInside();
  StartKeeping();
}

// The module's windows go while the main window still stands.
MainWindow::~MainWindow() {
  mRemembersBlocks = false;
  mWorkbench->Stop();
  mBlocks.clear();
  mKeeper.reset();
  mWorkbench.reset();
  DestroyAcceleratorTable(mKeys);
}

void MainWindow::MakeInside() {
  mTools = std::make_unique<ToolBar>(Handle());
  mStatus = CreateWindowExW(0, STATUSCLASSNAMEW, nullptr, WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP, 0, 0, 0, 0,
                            Handle(), nullptr, GetModuleHandleW(nullptr), nullptr);
  CLIENTCREATESTRUCT inside = {nullptr, kFirstChild};
  mClient = CreateWindowExW(WS_EX_CLIENTEDGE, L"MDICLIENT", nullptr,
                            WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN | WS_VSCROLL | WS_HSCROLL, 0, 0, 0, 0,
                            Handle(), nullptr, GetModuleHandleW(nullptr), &inside);
  const int left = Scaled(280), width = Scaled(770), height = Scaled(400), messages = Scaled(150);
  mMessages = std::make_unique<MessagesWindow>(mClient, RECT{left, height, width, messages});
  mTrace = std::make_unique<TraceWindow>(mClient, mWorkbench->Trace(), RECT{left, 0, width, height});
  SetupCommands& commands = *this;
  mSetup = std::make_unique<SetupWindow>(mClient, *mWorkbench, commands, RECT{0, 0, left, height + messages});
  RefreshAll();
  SetTimer(Handle(), kStatusTimer, kStatusPeriod_ms, nullptr);
}

void MainWindow::Begin(int show) {
  ShowWindow(Handle(), show);
  UpdateWindow(Handle());
  if (OfferLeftWork()) return;
  const bool isNew = mOptions.configuration.empty();
  if (isNew) AfterOpening();
  if ((isNew || Open(mOptions.configuration)) && mOptions.start) StartMeasurement();
}

// Keys of the program go first, but the one that stops a measurement closes dialogs while none runs.
bool MainWindow::Translate(MSG& message) {
  if (!mClient || !IsWindowEnabled(Handle())) return false;
  if (message.hwnd != Handle() && !IsChild(Handle(), message.hwnd)) return false;
  if (TranslateMDISysAccel(mClient, &message)) return true;
  const bool isStop = message.message == WM_KEYDOWN && message.wParam == VK_ESCAPE;
  if (!(isStop && !mWorkbench->IsMeasuring()) && TranslateAcceleratorW(Handle(), mKeys, &message))
    return true;
  ChildWindow* const child = ActiveChild();
  return child && child->Translate(message);
}

std::vector<std::pair<std::string, ChildWindow*>> MainWindow::InnerWindows() const {
  return {{NConfiguration::kSetupWindow, mSetup.get()},
          {NConfiguration::kTraceWindow, mTrace.get()},
          {NConfiguration::kMessagesWindow, mMessages.get()}};
}

ChildWindow* MainWindow::ActiveChild() const {
  const auto active = reinterpret_cast<HWND>(::SendMessageW(mClient, WM_MDIGETACTIVE, 0, 0));
  for (const auto& [name, child] : InnerWindows()) {
    if (child && child->Handle() == active) return child;
  }
  for (const auto& [block, window] : mBlocks) {
    if (window->Handle() == active) return window.get();
  }
  return nullptr;
}

// ---- what the workbench tells

void MainWindow::OnSetupChanged() { RefreshLater(); }

void MainWindow::OnBlockLeaving(IUnknown& block) {
  if (mRemembersBlocks) RememberWindows();
  mBlocks.erase(&block);
}

void MainWindow::OnMeasurementChanged() {
  if (mWorkbench->IsMeasuring() && mTrace) mTrace->Restart();
  RefreshLater();
}

void MainWindow::OnCannotStart(const std::string& text) {
  SetCursor(LoadCursorW(nullptr, IDC_ARROW));
  Ask(Handle(), Text(TextId::CannotStart, Wide(text)), MB_OK | MB_ICONERROR);
}

void MainWindow::OnTrouble(const std::string& text) {
  if (mMessages) mMessages->Add(Wide(text));
}

// Behind what the windows of blocks have posted to themselves, to load a file for example.
void MainWindow::SettleLater() { PostMessageW(Handle(), kSettle, 0, 0); }

// Many things change at once, and a module tells of it from inside its calls.
void MainWindow::RefreshLater() {
  if (!mRefreshPosted && mStatus) mRefreshPosted = PostMessageW(Handle(), kRefresh, 0, 0) != FALSE;
}

void MainWindow::RefreshAll() {
  mRefreshPosted = false;
  mFiles.Follow(UsedFiles(*mWorkbench));
  UseTexts(mWorkbench->Settings().language);
  PrepareCrash();
  mCommands->Update();
  BuildMenu();
  ShowToolBar();
  for (const auto& [name, child] : InnerWindows()) child->Refresh();
  mTrace->SetNumberBase(mWorkbench->Settings().numberBase);
  for (const auto& [object, window] : mBlocks) {
    const PlacedBlock* const block = mWorkbench->Find(object);
    if (block && window) SetWindowTextW(window->Handle(), mWorkbench->CaptionOf(*block).c_str());
  }
  ShowTitle();
  ShowStatus();
  Arrange();
}

// ---- window

LRESULT MainWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_SIZE:
      Arrange();
      return 0;  // the default would give the windows inside the whole area
    case WM_TIMER:
      OnTick();
      return 0;
    case kRefresh:
      mRefreshPosted = false;
      mRefreshIsDue = mMenuIsOpen;
      if (!mMenuIsOpen) RefreshAll();
      return 0;
    case WM_ACTIVATEAPP:
      if (wParam && mStatus) PostMessageW(Handle(), kLook, 0, 0);
      break;
    case kSettle:
      mWorkbench->SettleOpened();
      return 0;
    case kLook:
      LookAtFiles();
      return 0;
    case WM_ENTERMENULOOP:
      mMenuIsOpen = true;
      break;
    case WM_EXITMENULOOP:
      OnMenuClosed();
      break;
    case WM_COMMAND:
      if (OnCommand(LOWORD(wParam))) return 0;
      break;
    case WM_INITMENU:
      if (reinterpret_cast<HMENU>(wParam) == GetMenu(Handle())) FillCommandMenus();
      break;
    case WM_INITMENUPOPUP:
      if (HIWORD(lParam) == 0) ShowStates(reinterpret_cast<HMENU>(wParam));
      break;
    case WM_NOTIFY:
      return OnNotify(*reinterpret_cast<NMHDR*>(lParam));
    case WM_CLOSE:
      Close();
      return 0;
    case WM_QUERYENDSESSION:
      return ConfirmDiscard();
    case WM_ENDSESSION:
      if (wParam && mKeeper) mKeeper->Discard();
      return 0;
    case WM_DESTROY:
      PostQuitMessage(0);
      return 0;
    default:
      break;
  }
  return Default(message, wParam, lParam);
}

void MainWindow::OnTick() {
  const bool isSecond = ++mTicks % kTicksPerSpan == 0;
  if (isSecond && mWorkbench->IsMeasuring()) mWorkbench->EndLoadSpan();
  mWorkbench->Tidy(IsInTask);
  ShowStatus();
  if (!isSecond || mWorkbench->IsChanging()) return;
  ShowTitle();
  KeepUnsavedInTime();
  if (std::chrono::steady_clock::now() >= mNextLook) LookAtFiles();
}

LRESULT MainWindow::OnNotify(NMHDR& header) {
  if (header.code == TTN_GETDISPINFOW) {
    auto& asked = reinterpret_cast<NMTTDISPINFOW&>(header);
    const ToolButton* button = mTools ? mTools->Find(static_cast<int>(header.idFrom)) : nullptr;
    if (!button) return 0;
    ::SendMessageW(header.hwndFrom, TTM_SETMAXTIPWIDTH, 0, Scaled(400));
    asked.lpszText = const_cast<wchar_t*>(button->tip.c_str());
  } else if (header.code == TBN_DROPDOWN) {
    DropDown(reinterpret_cast<NMTOOLBARW&>(header).iItem);
    return TBDDRET_DEFAULT;
  }
  return 0;
}

void MainWindow::DropDown(int id) {
  const HMENU menu = mCommands->MakeDropDown(id);
  if (!menu) return;
  OnCommand(Choose(menu, mTools->BelowOf(id)));
}

// The number of an item, 0 for none. The menu is destroyed.
int MainWindow::Choose(HMENU menu, POINT place) {
  mMenuIsOpen = true;
  const int chosen = TrackPopupMenu(menu, TPM_RETURNCMD | TPM_NONOTIFY | TPM_RIGHTBUTTON, place.x, place.y, 0,
                                    Handle(), nullptr);
  OnMenuClosed();
  DestroyMenu(menu);
  return chosen;
}

// A command that was chosen is on its way: what it refers to is made anew behind it.
void MainWindow::OnMenuClosed() {
  mMenuIsOpen = false;
  if (std::exchange(mRefreshIsDue, false)) RefreshLater();
}

void MainWindow::Arrange() {
  if (!mClient) return;
  RECT area = {}, status = {};
  GetClientRect(Handle(), &area);
  ::SendMessageW(mTools->Handle(), TB_AUTOSIZE, 0, 0);
  ::SendMessageW(mStatus, WM_SIZE, 0, 0);
  GetWindowRect(mStatus, &status);
  const int top = mTools->Height(), bottom = static_cast<int>(area.bottom - (status.bottom - status.top));
  RECT before = {};
  GetWindowRect(mClient, &before);
  MapWindowPoints(nullptr, Handle(), reinterpret_cast<POINT*>(&before), 2);
  MoveWindow(mClient, 0, top, area.right, bottom > top ? bottom - top : 0, TRUE);
  if (before.top != top) {
    RedrawWindow(mClient, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_FRAME | RDW_ALLCHILDREN);
  }
  const int width = static_cast<int>(area.right);
  const int edges[] = {Scaled(190), Scaled(400), width - Scaled(70), -1};
  ::SendMessageW(mStatus, SB_SETPARTS, 4, reinterpret_cast<LPARAM>(edges));
}

void MainWindow::ShowTitle() {
  const auto& file = mWorkbench->File();
  const std::wstring name = file.empty() ? std::wstring(Text(TextId::Untitled)) : file.filename().wstring();
  const wchar_t* const mark = mWorkbench->IsModified() ? L"*" : L"";
  const std::wstring title = name + mark + L" - " + Text(TextId::AppName);
  if (TextOf(Handle()) != title) SetWindowTextW(Handle(), title.c_str());
}

void MainWindow::ShowStatus() {
  std::uint64_t received = 0, transmitted = 0;
  for (const auto& [channel, load] : mWorkbench->Loads()) {
    received += load.Received();
    transmitted += load.Transmitted();
  }
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(mWorkbench->Elapsed()).count();
  std::wstring state = Text(TextId::StateStopped);
  if (mWorkbench->IsMeasuring()) state = Text(TextId::StateMeasuring, std::to_wstring(seconds));
  if (mWorkbench->IsJoining()) state = Text(TextId::StateJoining);
  const std::wstring texts[] = {
      state, Text(TextId::StateFrames, std::to_wstring(received), std::to_wstring(transmitted)),
      LoadText(mWorkbench->Loads()),
      Text(mWorkbench->Settings().numberBase == 16 ? TextId::StateHexadecimal : TextId::StateDecimal)};
  for (std::size_t part = 0; part < std::size(texts); ++part) {
    if (texts[part] == mShownStatus[part]) continue;  // each is drawn when it is set
    mShownStatus[part] = texts[part];
    ::SendMessageW(mStatus, SB_SETTEXTW, part, reinterpret_cast<LPARAM>(texts[part].c_str()));
  }
}

void MainWindow::ShowToolBar() {
  const bool measuring = mWorkbench->IsMeasuring();
  std::vector<ToolButton> buttons = {
      OwnButton(kFileNew, TextId::TipNew, DrawnIcon::New),
      OwnButton(kFileOpen, TextId::TipOpen, DrawnIcon::Open),
      OwnButton(kFileSave, TextId::TipSave, DrawnIcon::Save),
      {},
      OwnButton(kMeasureStart, TextId::TipStart, DrawnIcon::Start, !measuring),
      OwnButton(kMeasureStop, TextId::TipStop, DrawnIcon::Stop, measuring),
      {},
      OwnButton(kOptionsChannels, TextId::TipChannels, DrawnIcon::Channels, !measuring)};
  mCommands->AppendButtons(buttons);
  mTools->Show(std::move(buttons), mWorkbench->Settings().largeIcons);
}

void MainWindow::BuildMenu() {
  const MainMenu menu = MakeMainMenu(*mWorkbench, mRecent);
  mInsertMenu = menu.insert;
  mGroupMenus = menu.groups;
  const HMENU old = GetMenu(Handle());
  ::SendMessageW(mClient, WM_MDISETMENU, reinterpret_cast<WPARAM>(menu.bar),
                 reinterpret_cast<LPARAM>(menu.window));
  DrawMenuBar(Handle());
  if (old) DestroyMenu(old);
}

// The module may have other commands, captions and states each time.
void MainWindow::FillCommandMenus() {
  mCommands->Update();
  const auto fill = [&](HMENU menu, const std::vector<std::wstring>& names) {
    while (DeleteMenu(menu, 0, MF_BYPOSITION)) continue;
    mCommands->Append(menu, names);
  };
  fill(mInsertMenu, mCommands->InsertCommands());
  const auto& groups = mWorkbench->Application().Commands().Groups();
  for (const auto& [name, menu] : mGroupMenus) {
    const auto group = groups.find(name);
    if (group != groups.end()) fill(menu, mCommands->MenuCommands(group->second));
  }
}

void MainWindow::ShowStates(HMENU menu) const {
  const bool measuring = mWorkbench->IsMeasuring();
  const auto& settings = mWorkbench->Settings();
  const auto enable = [&](int id, bool enabled) {
    EnableMenuItem(menu, static_cast<UINT>(id), enabled ? MF_ENABLED : MF_GRAYED);
  };
  const auto check = [&](int id, bool checked) {
    CheckMenuItem(menu, static_cast<UINT>(id), checked ? MF_CHECKED : MF_UNCHECKED);
  };
  enable(kMeasureStart, !measuring);
  enable(kMeasureStop, measuring);
  for (const int id : {kOptionsChannels, kOptionsHalvard, kOptionsTesmond, kOptionsEnglish, kOptionsGerman}) {
    enable(id, !measuring);
  }
  check(kOptionsHexadecimal, settings.numberBase == 16);
  check(kOptionsLargeIcons, settings.largeIcons);
  check(kOptionsHalvard, settings.variant == NSdk::kHostHalvard);
  check(kOptionsTesmond, settings.variant == NSdk::kHostTesmond);
  check(kOptionsEnglish, settings.language != kGerman);
  check(kOptionsGerman, settings.language == kGerman);
}

}  // namespace NWorkbench
