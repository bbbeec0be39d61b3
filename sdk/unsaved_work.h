#pragma once
// Blocks whose user's work is kept in files of their own.

#include "sdk/com_base.h"

namespace NSdk {

/// Implemented by a block that may hold work which the configuration does not keep, such as the lists of a
/// generator. A host asks before it removes the block, closes the configuration or loads the module anew, and
/// before it asks whether the configuration is to be saved: the answer may change the block's settings.
struct IUnsavedWork : IUnknown {
  static constexpr IID kIid = {0x37f1d7a3, 0x52d2, 0x4a30, {0x9d, 0x60, 0x5c, 0x0e, 0xb3, 0x2a, 0x14, 0xc9}};

  /// Asks the user, where there is something to lose, whether to save it; `parentWindow` may be null. S_OK:
  /// the block may go. S_FALSE: the user wants it to stay.
  virtual HRESULT STDMETHODCALLTYPE ConfirmLeaving(void* parentWindow) = 0;
};

}  // namespace NSdk
