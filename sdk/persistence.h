#pragma once
// How an object keeps its settings in the host's configuration: text by key.

#include "sdk/com_base.h"

namespace NSdk {

struct IPersistReader : IUnknown {
  static constexpr IID kIid = {0x7057df83, 0xed6c, 0x4137, {0xb8, 0x15, 0xd4, 0x58, 0x02, 0xb6, 0x02, 0x54}};

  /// Value of a key. E_FAIL: there is no such key, nothing written.
  virtual HRESULT STDMETHODCALLTYPE ReadText(const wchar_t* key, wchar_t** value) = 0;
};

struct IPersistWriter : IUnknown {
  static constexpr IID kIid = {0x93037750, 0xab45, 0x4450, {0x8a, 0xb3, 0x0b, 0xe2, 0x09, 0x05, 0xf9, 0x54}};

  /// Stores a value under a key, replacing an older one.
  virtual HRESULT STDMETHODCALLTYPE WriteText(const wchar_t* key, const wchar_t* value) = 0;
};

/// Implemented by an object that lives in the host's configuration.
struct IPersistentObject : IUnknown {
  static constexpr IID kIid = {0x59a73c43, 0x7aa4, 0x4b08, {0xa6, 0x50, 0xc3, 0x14, 0xab, 0x14, 0x87, 0x42}};

  /// ProgID under which the host creates the object again.
  virtual HRESULT STDMETHODCALLTYPE GetProgId(wchar_t** progId) = 0;
  /// Takes its values from the reader; a key that is missing leaves the default. A null reader is a
  /// programming error.
  virtual HRESULT STDMETHODCALLTYPE Load(IPersistReader* reader) = 0;
  /// Writes all its values. A null writer is a programming error.
  virtual HRESULT STDMETHODCALLTYPE Save(IPersistWriter* writer) = 0;
};

}  // namespace NSdk
