#include "plugin/nmt_menu.h"

#include <windows.h>

#include "common/win/resources.h"
#include "plugin/nmt_dispatch.h"
#include "resources/resource_ids.h"
#include "resources/text.h"

namespace NPlugin {
namespace {

// In the order of the kinds.
constexpr std::uint32_t kKindTexts[] = {IDS_NMT_OPERATIONAL, IDS_NMT_PREOPERATIONAL, IDS_NMT_STOP,
                                        IDS_NMT_RESET};

// Names come from databases and configurations: an ampersand in them is one, and no mnemonic.
std::wstring MenuText(const std::wstring& name) {
  std::wstring text;
  for (const wchar_t character : name) text += character == L'&' ? L"&&" : std::wstring(1, character);
  return text;
}

// Numbers items in the order in which they come.
class ItemNumbers {
 public:
  ItemNumbers(std::uint32_t firstId, std::uint32_t lastId, std::vector<NmtTarget>& items)
      : mFirstId(firstId), mLastId(lastId), mItems(items) {
    mItems.clear();
  }

  void Append(HMENU menu, const std::wstring& text, const NmtTarget& target) {
    const std::uint64_t id = std::uint64_t{mFirstId} + mItems.size();
    if (id > mLastId) return;
    AppendMenuW(menu, MF_STRING, static_cast<UINT_PTR>(id), text.c_str());
    mItems.push_back(target);
  }

 private:
  std::uint32_t mFirstId;
  std::uint32_t mLastId;
  std::vector<NmtTarget>& mItems;
};

// The pop-up menu that a menu of the resources holds. Null: there is none.
HMENU LoadPopup(int id) {
  const HMENU loaded = NCommon::LoadOwnMenu(id);
  const HMENU popup = loaded ? GetSubMenu(loaded, 0) : nullptr;
  if (popup) RemoveMenu(loaded, 0, MF_BYPOSITION);
  if (loaded) DestroyMenu(loaded);
  return popup;
}

void FillNetwork(HMENU menu, NmtKind kind, std::uint8_t network, const std::vector<CommandSet::Node>& nodes,
                 ItemNumbers& numbers) {
  numbers.Append(menu, NResources::LoadText(IDS_NMT_MENU_ALL_NODES), {kind, network, kTargetAllNodes});
  numbers.Append(menu, NResources::LoadText(IDS_NMT_MENU_NODES), {kind, network, kTargetChosenNodes});
  bool separated = false;
  for (const CommandSet::Node& node : nodes) {
    if (node.network != network) continue;
    if (!separated) AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
    separated = true;
    numbers.Append(menu, MenuText(node.caption), {kind, network, node.nodeId});
  }
}

// The cascaded menu: its placeholders, a network with a node, give way to those that there are.
HMENU MakeCascade(NmtKind kind, const std::vector<ZCONetworkEntry>& entries, ItemNumbers& numbers) {
  const HMENU networks = LoadPopup(IDM_NMT_NETWORKS);
  if (!networks) return nullptr;
  while (GetMenuItemCount(networks) > 0) DeleteMenu(networks, 0, MF_BYPOSITION);
  const std::vector<CommandSet::Node> nodes = MenuNodes(entries);
  for (std::size_t position = 0; position < entries.size(); ++position) {
    const HMENU network = CreatePopupMenu();
    FillNetwork(network, kind, static_cast<std::uint8_t>(position + 1), nodes, numbers);
    AppendMenuW(networks, MF_POPUP, reinterpret_cast<UINT_PTR>(network),
                MenuText(entries[position].name).c_str());
  }
  return networks;
}

}  // namespace

HRESULT NmtMenu::MakeForNetworks(std::uint32_t firstId, std::uint32_t lastId, void** menu) {
  if (!menu) return E_POINTER;
  const std::vector<ZCONetworkEntry> entries = NetworkEntries();
  if (entries.empty()) return S_FALSE;
  mFirstId = firstId;
  ItemNumbers numbers(firstId, lastId, mItems);
  const HMENU made = CreatePopupMenu();
  for (std::size_t position = 0; position < std::size(kNmtKinds); ++position) {
    const HMENU cascade = MakeCascade(kNmtKinds[position], entries, numbers);
    if (!cascade) {
      DestroyMenu(made);
      return E_FAIL;
    }
    AppendMenuW(made, MF_POPUP, reinterpret_cast<UINT_PTR>(cascade),
                NResources::LoadText(kKindTexts[position]).c_str());
  }
  *menu = made;
  return S_OK;
}

HRESULT NmtMenu::MakeForNetwork(NmtKind kind, std::uint8_t network, std::uint32_t firstId,
                                std::uint32_t lastId, void** menu) {
  if (!menu) return E_POINTER;
  if (lastId <= firstId) return E_INVALIDARG;
  const HMENU made = LoadPopup(IDM_NMT_COMMANDS);
  if (!made) return E_FAIL;
  mFirstId = firstId;
  mItems = {{kind, network, kTargetAllNodes}, {kind, network, kTargetChosenNodes}};
  MENUITEMINFOW item = {};
  item.cbSize = sizeof(item);
  item.fMask = MIIM_ID;
  for (const int known : {ID_NMT_ALL_NODES, ID_NMT_OTHER_NODES}) {
    item.wID = firstId + static_cast<UINT>(known - ID_NMT_ALL_NODES);
    SetMenuItemInfoW(made, static_cast<UINT>(known), FALSE, &item);
  }
  *menu = made;
  return S_OK;
}

}  // namespace NPlugin
