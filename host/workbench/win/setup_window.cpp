#include "host/workbench/win/setup_window.h"

#include <windowsx.h>

#include "host/workbench/texts.h"
#include "host/workbench/win/command_ids.h"

namespace NWorkbench {
namespace {

// A line of the tree as the module sees it.
template <class Interface>
class SetupItem final : public NRuntime::Implements<Interface> {
 public:
  explicit SetupItem(NSdk::SetupItemType type) : mType(type) {}
  HRESULT STDMETHODCALLTYPE GetItemType(std::uint32_t* type) override {
    return NRuntime::HandOut<std::uint32_t>(mType, type);
  }

 private:
  NSdk::SetupItemType mType;
};

class MeasurementItem final : public NRuntime::Implements<IUnknown> {};

NRuntime::ComPtr<IUnknown> ItemOf(const SetupWindow::Place& place) {
  using Kind = SetupWindow::Place::Kind;
  const auto type = place.isFree ? NSdk::kSetupItemHotSpot : NSdk::kSetupItemBlock;
  switch (place.kind) {
    case Kind::Simulation:
      return NRuntime::ComPtr<IUnknown>::Own(new SetupItem<NSdk::ISimulationItem>(type));
    case Kind::SendLine:
      return NRuntime::ComPtr<IUnknown>::Own(new SetupItem<NSdk::ISendLineItem>(type));
    case Kind::Measurement:
      return NRuntime::ComPtr<IUnknown>::Own(new MeasurementItem());
    case Kind::Heading:
      break;
  }
  return nullptr;
}

class SelectionOfOne final : public NRuntime::Implements<NSdk::ISelectionContext> {
 public:
  explicit SelectionOfOne(NRuntime::ComPtr<IUnknown> item) : mItem(std::move(item)) {}

  HRESULT STDMETHODCALLTYPE GetSelectedCount(std::uint32_t* count) override {
    return NRuntime::HandOut<std::uint32_t>(mItem ? 1 : 0, count);
  }
  HRESULT STDMETHODCALLTYPE GetSelected(std::uint32_t position, IUnknown** item) override {
    if (!item) return E_POINTER;
    if (!mItem || position != 0) return E_INVALIDARG;
    return NRuntime::ComPtr<IUnknown>(mItem).MoveTo(item);
  }

 private:
  NRuntime::ComPtr<IUnknown> mItem;
};

bool Sends(const PlacedBlock& block) {
  return block.object && NRuntime::Query<NSdk::IMSTransferNode>(block.object);
}

}  // namespace

SetupWindow::SetupWindow(HWND client, Workbench& workbench, SetupCommands& commands, RECT place)
    : mWorkbench(workbench), mCommands(commands) {
  MakeChild(client, L"OstrelSetup", Text(TextId::SetupTitle), place);
  mTree = MakeControl(Handle(), WC_TREEVIEWW, L"",
                      WS_TABSTOP | TVS_HASLINES | TVS_HASBUTTONS | TVS_LINESATROOT | TVS_SHOWSELALWAYS, 1);
  ::SendMessageW(Handle(), WM_SIZE, 0, 0);
  Refresh();
}

// The tree is small and made anew; what was selected stays selected.
void SetupWindow::Refresh() {
  using Kind = Place::Kind;
  const Place selected = Selected();
  SetWindowTextW(Handle(), Text(TextId::SetupTitle));
  ::SendMessageW(mTree, WM_SETREDRAW, FALSE, 0);
  TreeView_DeleteAllItems(mTree);
  mPlaces.clear();
  const auto& document = mWorkbench.Settings();
  if (document.variant == NSdk::kHostHalvard) {
    const HTREEITEM simulation = Add(TVI_ROOT, Text(TextId::SetupSimulation), {});
    for (const auto& channel : document.channels) {
      const std::wstring title = Text(TextId::SetupNetwork, std::to_wstring(channel.number));
      const HTREEITEM network =
          Add(simulation, title, {Kind::Simulation, channel.number, Place::kNoBlock, true});
      AddBlocks(network, Kind::Simulation, channel.number);
      TreeView_Expand(mTree, network, TVE_EXPAND);
    }
    AddBlocks(simulation, Kind::Simulation, 0);
    TreeView_Expand(mTree, simulation, TVE_EXPAND);
  }
  const HTREEITEM measurement =
      Add(TVI_ROOT, Text(TextId::SetupMeasurement), {Kind::Measurement, 0, Place::kNoBlock, true});
  if (document.variant != NSdk::kHostHalvard) {
    const HTREEITEM line =
        Add(measurement, Text(TextId::SetupSendLine), {Kind::SendLine, 0, Place::kNoBlock, true});
    AddBlocks(line, Kind::SendLine, 0);
    TreeView_Expand(mTree, line, TVE_EXPAND);
  }
  AddBlocks(measurement, Kind::Measurement, 0);
  TreeView_Expand(mTree, measurement, TVE_EXPAND);
  ::SendMessageW(mTree, WM_SETREDRAW, TRUE, 0);
  for (HTREEITEM item = TreeView_GetRoot(mTree); item; item = TreeView_GetNextVisible(mTree, item)) {
    TVITEMW data = {};
    data.mask = TVIF_PARAM;
    data.hItem = item;
    TreeView_GetItem(mTree, &data);
    const Place& place = mPlaces[static_cast<std::size_t>(data.lParam)];
    if (place.kind == selected.kind && place.channel == selected.channel && place.block == selected.block &&
        place.isFree == selected.isFree) {
      TreeView_SelectItem(mTree, item);
    }
  }
}

HTREEITEM SetupWindow::Add(HTREEITEM parent, const std::wstring& text, Place place) {
  TVINSERTSTRUCTW insert = {};
  insert.hParent = parent;
  insert.hInsertAfter = TVI_LAST;
  insert.item.mask = TVIF_TEXT | TVIF_PARAM;
  insert.item.pszText = const_cast<wchar_t*>(text.c_str());
  insert.item.lParam = static_cast<LPARAM>(mPlaces.size());
  mPlaces.push_back(place);
  return TreeView_InsertItem(mTree, &insert);
}

// A generator whose channel is not there any more stands in its setup outside all networks.
bool SetupWindow::Belongs(const PlacedBlock& block, Place::Kind kind, std::uint32_t channel) const {
  if (kind == Place::Kind::SendLine) return Sends(block);
  const auto& document = mWorkbench.Settings();
  if (document.variant != NSdk::kHostHalvard) return !Sends(block);
  const bool simulated = mWorkbench.CategoryOf(block) == NSdk::kBlockCategorySimulation;
  if (kind == Place::Kind::Measurement) return !simulated;
  if (!simulated) return false;
  const std::uint32_t own = mWorkbench.ChannelOf(block);
  bool known = false;
  for (const auto& each : document.channels) known = known || each.number == own;
  return channel == 0 ? !known : own == channel;
}

void SetupWindow::AddBlocks(HTREEITEM parent, Place::Kind kind, std::uint32_t channel) {
  const auto& blocks = mWorkbench.Blocks();
  for (std::size_t position = 0; position < blocks.size(); ++position) {
    if (!Belongs(blocks[position], kind, channel)) continue;
    const std::wstring name = mWorkbench.NameOf(blocks[position]);
    Add(parent, blocks[position].object ? name : Text(TextId::SetupBlockMissing, name),
        {kind, channel, position, false});
  }
}

SetupWindow::Place SetupWindow::Selected() const {
  TVITEMW data = {};
  data.mask = TVIF_PARAM;
  data.hItem = mTree ? TreeView_GetSelection(mTree) : nullptr;
  if (!data.hItem || !TreeView_GetItem(mTree, &data)) return {};
  return mPlaces[static_cast<std::size_t>(data.lParam)];
}

NRuntime::ComPtr<NSdk::ISelectionContext> SetupWindow::Selection() const {
  return NRuntime::ComPtr<NSdk::ISelectionContext>::Own(new SelectionOfOne(ItemOf(Selected())));
}

bool SetupWindow::Translate(MSG& message) {
  if (message.message != WM_SYSKEYDOWN || message.hwnd != mTree || message.wParam != VK_RETURN) return false;
  mCommands.PostCommand(kBlockConfigure);
  return true;
}

LRESULT SetupWindow::OnMessage(UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_SIZE: {
      RECT area = {};
      GetClientRect(Handle(), &area);
      if (mTree) MoveWindow(mTree, 0, 0, area.right, area.bottom, TRUE);
      break;
    }
    case WM_SETFOCUS:
      SetFocus(mTree);
      return 0;
    case WM_NOTIFY:
      return OnNotify(*reinterpret_cast<NMHDR*>(lParam));
    case WM_CONTEXTMENU: {
      POINT screen = {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
      if (screen.x == -1) {  // by the keyboard
        RECT line = {};
        if (const HTREEITEM item = TreeView_GetSelection(mTree))
          TreeView_GetItemRect(mTree, item, &line, TRUE);
        screen = {line.left, line.bottom};
        ClientToScreen(mTree, &screen);
      }
      mCommands.ShowSetupMenu(screen);
      return 0;
    }
    case WM_CLOSE:
      PutAway();
      return 0;
    default:
      break;
  }
  return Default(message, wParam, lParam);
}

LRESULT SetupWindow::OnNotify(const NMHDR& header) {
  if (header.hwndFrom != mTree) return 0;
  const std::size_t block = Selected().block;
  if (header.code == NM_RCLICK) {  // what is under the pointer is what the menu is for
    TVHITTESTINFO hit = {};
    GetCursorPos(&hit.pt);
    ScreenToClient(mTree, &hit.pt);
    if (const HTREEITEM item = TreeView_HitTest(mTree, &hit)) TreeView_SelectItem(mTree, item);
    return 0;
  }
  if (block == Place::kNoBlock) return 0;
  if (header.code == NM_DBLCLK || header.code == NM_RETURN) return mCommands.PostCommand(kBlockOpen), 1;
  if (header.code == TVN_KEYDOWN && reinterpret_cast<const NMTVKEYDOWN&>(header).wVKey == VK_DELETE) {
    mCommands.PostCommand(kBlockRemove);
  }
  return 0;
}

}  // namespace NWorkbench
