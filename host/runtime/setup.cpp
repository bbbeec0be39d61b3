#include "host/runtime/setup.h"

#include <algorithm>
#include <stdexcept>

#include "host/runtime/text.h"

namespace NRuntime {

HRESULT Setup::AddBlock(IUnknown* block) {
  if (!block) return E_POINTER;
  std::uint32_t measuring = 0;
  if (FAILED(mApplication->IsMeasuring(&measuring)) || measuring != 0) return E_FAIL;
  const auto plugInBlock = Query<NSdk::IPlugInBlock>(block);
  if (!plugInBlock) return E_NOINTERFACE;
  const auto site = Make<BlockSite>(*mApplication, mChanged);
  const HRESULT result = plugInBlock->Attach(site.Get());
  if (FAILED(result)) return result;
  mBlocks.push_back(Query<IUnknown>(block));
  TellChanged();
  return result;
}

// The pointer to IUnknown is what tells objects apart.
HRESULT Setup::RemoveBlock(IUnknown* block) {
  if (!block) return E_POINTER;
  const auto identity = Query<IUnknown>(block);
  const auto found = std::find_if(mBlocks.begin(), mBlocks.end(),
                                  [&](const auto& known) { return known.Get() == identity.Get(); });
  if (found == mBlocks.end()) return E_INVALIDARG;
  mBlocks.erase(found);
  Query<NSdk::IPlugInBlock>(identity)->Detach();
  TellChanged();
  return S_OK;
}

void Setup::TellChanged() const {
  if (mChanged) mChanged();
}

void Setup::Clear() {
  while (!mBlocks.empty()) RemoveBlock(ComPtr<IUnknown>(mBlocks.back()).Get());
}

HRESULT SetupContext::GetCurrentSetup(NSdk::ISetup** setup) {
  return ComPtr<NSdk::ISetup>(mSetup.Get()).MoveTo(setup);
}

ComPtr<IUnknown> InsertBlock(const Application& application, Setup& setup, const std::wstring& command) {
  const auto refuse = [&](const char* reason) {
    throw std::runtime_error("command \"" + ToUtf8(command) + "\": " + reason);
  };
  const auto action = application.Commands().FindCommand(command);
  if (!action) refuse("the module has none of this name");
  const std::size_t before = setup.Blocks().size();
  const auto context = Make<SetupContext>(setup);
  if (FAILED(action->Execute(context.Get()))) refuse("the module cannot insert the block");
  if (setup.Blocks().size() != before + 1) refuse("it has inserted no block");
  return setup.Blocks().back();
}

}  // namespace NRuntime
