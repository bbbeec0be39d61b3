#include "plugin/nmt_menu.h"

namespace NPlugin {

HRESULT NmtMenu::MakeForNetworks(std::uint32_t, std::uint32_t, void**) { return E_NOTIMPL; }
HRESULT NmtMenu::MakeForNetwork(NmtKind, std::uint8_t, std::uint32_t, std::uint32_t, void**) {
  return E_NOTIMPL;
}

}  // namespace NPlugin
