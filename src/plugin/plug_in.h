#pragma once

#include "com/implements.h"
#include "sdk/plugin.h"

namespace NPlugin {

/// The one object that a host creates from this module and talks to for its whole life. The module keeps it,
/// so that it does not keep the module.
class ZPlugIn final : public NCom::ImplementsCached<NSdk::IPlugIn> {
 public:
  HRESULT STDMETHODCALLTYPE GetName(wchar_t** name) override;
  /// Binds the module to the host and registers its block types. S_OK even where single steps fail.
  HRESULT STDMETHODCALLTYPE Initialise(NSdk::IHostApplication* application) override;
  HRESULT STDMETHODCALLTYPE ShutDown() override;
};

}  // namespace NPlugin
