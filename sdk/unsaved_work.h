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

/// Implemented by a block whose unsaved work can be put aside and taken up again, so that it outlives the end
/// of its host, whatever that end is. A host keeps a copy up to date and offers the last one at its next
/// start.
struct IWorkCopy : IUnknown {
  static constexpr IID kIid = {0x206d95ed, 0x0d91, 0x49b4, {0x9a, 0x5e, 0x2f, 0xc0, 0x56, 0x48, 0xc7, 0xc9}};

  /// 0: nothing is unsaved. Any other number stands for one state of the work.
  virtual HRESULT STDMETHODCALLTYPE GetUnsavedState(std::uint32_t* state) = 0;
  /// Writes the work into a file; what the block counts as saved, and where, stays as it is. S_FALSE: nothing
  /// is unsaved, nothing written. E_FAIL: it cannot be written.
  virtual HRESULT STDMETHODCALLTYPE WriteCopy(const wchar_t* path) = 0;
  /// Takes such a file in place of the work that it has; it is unsaved then. The block's settings are there,
  /// and tell which file of its user's it belongs to. E_FAIL, nothing changed: it cannot be read, or the
  /// block is busy.
  virtual HRESULT STDMETHODCALLTYPE TakeCopy(const wchar_t* path) = 0;
};

}  // namespace NSdk
