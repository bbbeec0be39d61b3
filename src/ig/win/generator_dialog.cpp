#include "ig/win/generator_dialog.h"

#include <windowsx.h>

#include <algorithm>

#include "channels/channel_manager.h"
#include "common/host_application.h"
#include "resources/resource_ids.h"
#include "resources/text.h"

namespace NIg {
namespace {

constexpr UINT_PTR kReloadTimer = 1;
constexpr UINT kReload_ms = 100;

}  // namespace

std::unique_ptr<GeneratorView> MakeGeneratorView(ZCANopenIGNode& block) {
  return std::make_unique<GeneratorDialog>(block);
}

GeneratorDialog::GeneratorDialog(ZCANopenIGNode& block) : Dialog(IDD_IG), mBlock(block) {}

// ---- the window in the host

HRESULT GeneratorDialog::Create(NSdk::IWindowSite* site) {
  Destroy();
  void* parent = nullptr;
  if (site->GetParentWindow(&parent) != S_OK || !parent) return S_FALSE;
  if (!Dialog::Create(static_cast<HWND>(parent))) return E_FAIL;
  mSite = site;
  mAtOnce = true;
  mBlock.ShowIn(this);
  mAtOnce = false;
  ShowButtons();
  ShowWindow(Window(), SW_SHOWNA);
  return S_OK;
}

void GeneratorDialog::Destroy() {
  Dialog::Destroy();
  mSite.Reset();
}

void GeneratorDialog::SetCaption(const std::wstring& caption) {
  if (!Window()) return;
  SetWindowTextW(Window(), caption.c_str());
  if (mSite) mSite->SetCaption(caption.c_str());
}

bool GeneratorDialog::OnInit() {
  mSequence.Attach(Control(IDC_IG_SEQUENCE));
  mCyclic.Attach(Control(IDC_IG_CYCLIC));
  RefreshTemplates();
  Measure();
  AttachSplitters();
  Arrange();
  SetTimer(Window(), kReloadTimer, kReload_ms, nullptr);
  // The first look at once: the user is to see no empty lists that fill later.
  PostMessageW(Window(), WM_TIMER, kReloadTimer, 0);
  return true;
}

void GeneratorDialog::OnDestroy() {
  mBlock.ShowIn(nullptr);
  EndDrag();
  KillTimer(Window(), kReloadTimer);
  mTreeSplitter.Detach();
  mListSplitter.Detach();
  mSequence.Detach();
  mCyclic.Detach();
  mPostedTexts.clear();
  // Whoever stopped a timer through this window still has it stopped.
  for (const auto& timer : mPostedTimers) timer->Stop();
  mPostedTimers.clear();
}

// The configuration may come after the window: the block's file is loaded once it is there. The message that
// tells of a failure lets timers run.
void GeneratorDialog::OnTimer(UINT_PTR id) {
  if (IsDragging()) ScrollWhileDragging();
  if (id != kReloadTimer || !NCommon::HostService<NSdk::IConfigurationService>()) return;
  KillTimer(Window(), kReloadTimer);
  const NCom::ComPtr<ZCANopenIGNode> self(&mBlock);
  mBlock.ReloadOnce();
}

// ---- layout

void GeneratorDialog::Measure() {
  const auto pixels = [this](int width, int height) {
    RECT area = {0, 0, width, height};
    MapDialogRect(Window(), &area);
    return SIZE{area.right, area.bottom};
  };
  const SIZE distances = pixels(7, 4);
  const SIZE button = pixels(75, 14);
  mMetrics.margin = distances.cx;
  mMetrics.gap = distances.cy;
  mMetrics.label = pixels(0, 11).cy;
  mMetrics.button = button.cy;
  mMetrics.buttonWidth = button.cx;
  mMetrics.bar = distances.cy;
  mMetrics.leastTree = pixels(60, 0).cx;
  mMetrics.leastList = pixels(0, 24).cy;
}

void GeneratorDialog::OnSize(int, int) { Arrange(); }

void GeneratorDialog::Arrange() {
  if (mMetrics.button == 0) return;  // while the window is made
  RECT client = {};
  GetClientRect(Window(), &client);
  mLayout = LayOut(client.right, client.bottom, mMetrics, mTreeShare, mListShare);
  HDWP moved = BeginDeferWindowPos(static_cast<int>(mLayout.controls.size()));
  for (const PlacedControl& placed : mLayout.controls) {
    const NCommon::Area& area = placed.area;
    const bool shown = area.Width() > 0 && area.Height() > 0;
    if (!moved) break;
    moved =
        DeferWindowPos(moved, Control(placed.id), nullptr, area.left, area.top, area.Width(), area.Height(),
                       SWP_NOZORDER | SWP_NOACTIVATE | (shown ? SWP_SHOWWINDOW : SWP_HIDEWINDOW));
  }
  if (moved) EndDeferWindowPos(moved);
}

void GeneratorDialog::AttachSplitters() {
  using Bar = NCommon::Splitter::Bar;
  AttachSplitter(mTreeSplitter, IDC_IG_SPLIT_TREE, Bar::Upright, mTreeShare, mLayout.across);
  AttachSplitter(mListSplitter, IDC_IG_SPLIT_LISTS, Bar::Level, mListShare, mLayout.down);
}

// The span follows the window's size.
void GeneratorDialog::AttachSplitter(NCommon::Splitter& splitter, int id, NCommon::Splitter::Bar bar,
                                     NCommon::SplitPosition& share, const SplitSpan& span) {
  splitter.Attach(
      Control(id), bar,
      [this, &share, &span](int position) {
        share.MoveTo(position - span.begin, span.length);
        Arrange();
      },
      [this, &share] {
        share.Reset();
        Arrange();
      });
}

// ---- what the block tells

void GeneratorDialog::ListsReplaced() {
  mSequence.Refresh();
  mCyclic.Refresh();
}

void GeneratorDialog::TextsChanged() { ListsReplaced(); }

void GeneratorDialog::ItemChanged(const ItemPlace& place) {
  if (!Window()) return;
  List(place.list).RedrawRow(place.position);
  // The list cannot be scrolled by its user meanwhile.
  if (mBlock.Results().Current() == place.position && place.list == NSdk::kSequenceList) {
    mSequence.Follow(place.position);
  }
}

void GeneratorDialog::ActivityChanged() {
  ShowButtons();
  ListsReplaced();
}

// A file cannot take the place of lists that are being sent.
void GeneratorDialog::ShowButtons() {
  if (!Window()) return;
  const bool idle = !mBlock.IsLocked(NSdk::kSequenceList) && !mBlock.IsLocked(NSdk::kCyclicList);
  EnableWindow(Control(IDC_IG_OPEN), idle);
}

// ---- what a running block asks for

void GeneratorDialog::Tell(UINT message, WPARAM wide, LPARAM lng) {
  if (mAtOnce) {
    OnPrivateMessage(message, wide, lng);
  } else {
    PostMessageW(Window(), message, wide, lng);
  }
}

void GeneratorDialog::EnableControl(WindowControl control, bool enable) {
  if (Window()) Tell(kMessageEnableControl, static_cast<WPARAM>(control), enable);
}

void GeneratorDialog::StopTimer(const NCom::ComPtr<NSdk::ITimer>& timer) {
  if (!timer) return;
  if (!Window()) {
    timer->Stop();
    return;
  }
  mPostedTimers.push_back(timer);
  Tell(kMessageStopTimer, reinterpret_cast<WPARAM>(timer.Get()), 0);
}

void GeneratorDialog::SelectItem(WindowControl list, std::size_t position) {
  if (!Window()) return;
  Tell(kMessageSelectItem, static_cast<WPARAM>(list), static_cast<LPARAM>(position));
}

void GeneratorDialog::SetText(WindowControl control, const std::wstring& text) {
  if (!Window()) return;
  if (control == kControlExecute) mExecuteText = text;
  mPostedTexts.push_back(text);
  Tell(kMessageSetText, static_cast<WPARAM>(control), reinterpret_cast<LPARAM>(mPostedTexts.back().c_str()));
}

std::wstring GeneratorDialog::Text(WindowControl control) const {
  return control == kControlExecute ? mExecuteText : ControlText(control);
}

// A control by its identifier or window; null: it is not (any more) one of this window's.
HWND GeneratorDialog::ControlOf(WPARAM idOrWindow) const {
  if (idOrWindow <= 0xFFFF) return Control(static_cast<int>(idOrWindow));
  const auto window = reinterpret_cast<HWND>(idOrWindow);
  return IsWindow(window) && GetParent(window) == Window() ? window : nullptr;
}

std::optional<LRESULT> GeneratorDialog::OnPrivateMessage(UINT message, WPARAM wide, LPARAM lng) {
  if (message == kMessageStopTimer) {
    const auto found = std::ranges::find_if(
        mPostedTimers, [&](const auto& timer) { return reinterpret_cast<WPARAM>(timer.Get()) == wide; });
    if (found == mPostedTimers.end()) return 0;
    (*found)->Stop();
    mPostedTimers.erase(found);
    return 0;
  }
  const HWND control = ControlOf(wide);
  if (message == kMessageEnableControl && control) {
    // Whoever types goes on with the next control, not with one that hears nothing.
    if (lng == 0 && GetFocus() == control) SetFocus(GetNextDlgTabItem(Window(), control, FALSE));
    EnableWindow(control, lng != 0);
  }
  if (message == kMessageSelectItem && control) SelectNow(control, lng);
  if (message == kMessageSetText) {
    const auto found = std::ranges::find_if(
        mPostedTexts, [&](const auto& text) { return reinterpret_cast<LPARAM>(text.c_str()) == lng; });
    if (found == mPostedTexts.end()) return 0;
    if (control) SetWindowTextW(control, found->c_str());
    mPostedTexts.erase(found);
  }
  return 0;
}

void GeneratorDialog::SelectNow(HWND control, LPARAM row) {
  MessageList* const list = ListOf(control);
  if (!list || row < 0 || static_cast<std::size_t>(row) >= mBlock.Items(list->Which()).size()) return;
  SetFocus(control);
  list->Select({static_cast<std::size_t>(row)});
}

MessageList* GeneratorDialog::ListOf(HWND control) {
  if (control == mSequence.Control()) return &mSequence;
  return control == mCyclic.Control() ? &mCyclic : nullptr;
}

// ---- messages

std::optional<LRESULT> GeneratorDialog::OnMessage(UINT message, WPARAM wide, LPARAM lng) {
  switch (message) {
    case kMessageEnableControl:
    case kMessageStopTimer:
    case kMessageSelectItem:
    case kMessageSetText:
      return OnPrivateMessage(message, wide, lng);
    case WM_CONTEXTMENU:
      ShowMenu(reinterpret_cast<HWND>(wide), {GET_X_LPARAM(lng), GET_Y_LPARAM(lng)});
      return 0;
    case WM_MOUSEMOVE:
    case WM_LBUTTONUP: {
      if (!IsDragging()) return std::nullopt;
      POINT screen = {GET_X_LPARAM(lng), GET_Y_LPARAM(lng)};
      ClientToScreen(Window(), &screen);
      message == WM_MOUSEMOVE ? DragTo(screen) : Drop(screen);
      return 0;
    }
    case WM_CAPTURECHANGED:
    case WM_RBUTTONDOWN:
      EndDrag();
      return 0;
    default:
      return std::nullopt;
  }
}

bool GeneratorDialog::OnCommand(int id, int notification) {
  if (id == IDCANCEL && IsDragging()) {
    EndDrag();
    return true;
  }
  if (id >= ID_IG_INSERT_SEQUENCE && id <= ID_IG_REDO) {
    Execute(id);
    return true;
  }
  return notification == BN_CLICKED && OnButton(id);
}

// What is behind a button may let go of the block.
bool GeneratorDialog::OnButton(int id) {
  const NCom::ComPtr<ZCANopenIGNode> self(&mBlock);
  switch (id) {
    case IDC_IG_REFRESH:
      RefreshTemplates();
      return true;
    case IDC_IG_EXECUTE:
      mBlock.ToggleSequence();
      return true;
    case IDC_IG_START:
      mBlock.ToggleCyclic();
      return true;
    case IDC_IG_CONFIGURE:
      mBlock.Configure(Window());
      return true;
    case IDC_IG_OPEN:
      mBlock.OpenSequence(Window());
      return true;
    case IDC_IG_SAVE:
      mBlock.SaveSequenceAs(Window());
      return true;
    default:
      return false;
  }
}

void GeneratorDialog::RefreshTemplates() {
  EndDrag();
  NChannels::TheChannelManager().Refresh();
  mTree.Fill(Control(IDC_IG_TEMPLATES), MakeTemplates(mBlock.HexDisplay(), mBlock.DatabaseNodes()));
  ListsReplaced();
}

std::optional<LRESULT> GeneratorDialog::OnNotify(NMHDR& notification) {
  if (notification.idFrom == IDC_IG_TEMPLATES) {
    const auto& tree = reinterpret_cast<const NMTREEVIEWW&>(notification);
    if (notification.code == TVN_BEGINDRAGW) BeginDrag(mTree.ItemOf(tree.itemNew.hItem), std::nullopt);
    if (notification.code != TVN_KEYDOWN) return std::nullopt;
    return OnKey(reinterpret_cast<const NMTVKEYDOWN&>(notification).wVKey, /*inTree=*/true) ? 1 : 0;
  }
  MessageList* const list = ListOf(notification.hwndFrom);
  if (!list) return std::nullopt;
  switch (notification.code) {
    case static_cast<UINT>(NM_SETFOCUS):
      mActive = list->Which();
      return 0;
    case static_cast<UINT>(NM_DBLCLK):
      mActive = list->Which();
      if (reinterpret_cast<const NMITEMACTIVATE&>(notification).iItem >= 0) Execute(ID_IG_ITEM_EDIT);
      return 0;
    case LVN_BEGINDRAG:
      BeginDrag(nullptr, list->Which());
      return 0;
    default:
      return list->OnNotify(notification);
  }
}

}  // namespace NIg
