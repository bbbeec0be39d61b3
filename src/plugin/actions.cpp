#include "plugin/actions.h"

#include "ig/generator_node.h"
#include "plugin/external_tools.h"
#include "plugin/plug_in.h"
#include "scanner/scanner.h"
#include "sdk/setup.h"

namespace NPlugin {
namespace {

template <class Block>
HRESULT Insert(IUnknown* context) {
  return NCom::Entry([&]() -> HRESULT {
    if (!context) return E_POINTER;
    const auto access = NCom::QueryFor<NSdk::ISetupAccess>(context);
    if (!access) return E_NOINTERFACE;
    NCom::ComPtr<NSdk::ISetup> setup;
    const HRESULT result = access->GetCurrentSetup(setup.Receive());
    if (FAILED(result)) return result;
    return setup ? setup->AddBlock(NCom::Make<Block>()->Identity()) : E_FAIL;
  });
}

// Setups are not changed while a measurement runs.
HRESULT InsertState(const ZPlugIn& owner, std::uint32_t* state) {
  return NCom::Entry([&]() -> HRESULT {
    if (!state) return E_POINTER;
    *state = owner.IsMeasuring() ? NSdk::kCommandShown : NSdk::kCommandEnabled;
    return S_OK;
  });
}

HRESULT ToolState(std::uint32_t* state) {
  NCom::ModuleScope scope;
  if (state) *state = NSdk::kCommandEnabled;
  return S_OK;
}

}  // namespace

HRESULT ZActionInsertScanner::Execute(IUnknown* context) {
  return Insert<NScanner::ZCANopenScanner>(context);
}
HRESULT ZActionInsertScanner::GetState(std::uint32_t* state) { return InsertState(mOwner, state); }

HRESULT ZActionInsertSeqGenerator::Execute(IUnknown* context) { return Insert<NIg::ZCANopenIGNode>(context); }
HRESULT ZActionInsertSeqGenerator::GetState(std::uint32_t* state) { return InsertState(mOwner, state); }

HRESULT ZActionExecBrk::Execute(IUnknown*) { return NCom::Entry(StartBrackwell); }
HRESULT ZActionExecBrk::GetState(std::uint32_t* state) { return ToolState(state); }

HRESULT ZActionExecQuillon::Execute(IUnknown*) { return NCom::Entry(StartQuillon); }
HRESULT ZActionExecQuillon::GetState(std::uint32_t* state) { return ToolState(state); }

HRESULT ZActionCANopenNmtManagement::GetMenu(std::uint32_t firstId, std::uint32_t lastId, void** menu) {
  return NCom::Entry([&] { return mMenu.MakeForNetworks(firstId, lastId, menu); });
}

HRESULT ZActionCANopenNmtManagement::ExecuteItem(std::uint32_t id, IUnknown*) {
  return NCom::Entry([&]() -> HRESULT {
    const auto item = mMenu.Find(id);
    if (!item) return E_INVALIDARG;
    mOwner.SendNmt(item->kind, item->network, item->target);
    return S_OK;
  });
}

}  // namespace NPlugin
