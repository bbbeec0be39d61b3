#pragma once
// Blocks whose user's work was read from a file that other programs may change.

#include "sdk/com_base.h"

namespace NSdk {

/// Implemented by a block that reads and writes a file of its user's, such as a generator its sequence. The
/// block reads it once; a host watches the file, asks its user when another program has changed it, and has
/// it read again if that is wanted.
struct IWorkFile : IUnknown {
  static constexpr IID kIid = {0x2f7a3ee0, 0x3d59, 0x4f38, {0x93, 0x5d, 0xd7, 0xcd, 0xfe, 0xfb, 0x94, 0x87}};

  /// The file, and a number that differs after each time at which the block has read or written it. S_FALSE,
  /// nothing written: there is none.
  virtual HRESULT STDMETHODCALLTYPE GetFile(wchar_t** path, std::uint32_t* turn) = 0;
  /// Reads it again in place of the work that the block has, saved or not. E_FAIL, nothing changed: it cannot
  /// be read, and `reason`, when not null, receives a text that says why; or the block sends.
  virtual HRESULT STDMETHODCALLTYPE ReadAgain(wchar_t** reason) = 0;
};

}  // namespace NSdk
