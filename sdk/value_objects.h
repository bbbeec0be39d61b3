#pragma once
// Collections of COM objects that cross the interfaces.

#include "sdk/com_base.h"

namespace NSdk {

/// A list of objects that never changes.
struct IArray : IUnknown {
  static constexpr IID kIid = {0xf9830295, 0x090a, 0x409f, {0x96, 0xa2, 0x6e, 0x59, 0x1d, 0xba, 0xfa, 0xff}};

  virtual HRESULT STDMETHODCALLTYPE GetCount(std::uint32_t* count) = 0;
  /// Element at a position from 0. E_INVALIDARG: null result pointer, or position not below the count.
  virtual HRESULT STDMETHODCALLTYPE GetElement(std::uint32_t position, REFIID iid, void** object) = 0;
  /// Last element. E_FAIL: the array is empty.
  virtual HRESULT STDMETHODCALLTYPE GetLast(REFIID iid, void** object) = 0;
};

/// A map from 32-bit keys to objects, in a table whose size its owner chooses.
struct IHashMap : IUnknown {
  static constexpr IID kIid = {0x6d8619e9, 0x7610, 0x4f51, {0xae, 0x24, 0x75, 0x54, 0xab, 0x17, 0x81, 0x09}};

  /// Number of stored objects.
  virtual HRESULT STDMETHODCALLTYPE GetCount(std::int32_t* count) = 0;
  /// Number of slots. E_INVALIDARG: null result pointer.
  virtual HRESULT STDMETHODCALLTYPE GetTableSize(std::int32_t* size) = 0;
  /// Moves the objects into a table of another size; objects that find no place there are released.
  virtual HRESULT STDMETHODCALLTYPE Resize(std::int32_t size) = 0;
  /// E_INVALIDARG: null result pointer; E_FAIL: no such key, or no table.
  virtual HRESULT STDMETHODCALLTYPE Lookup(std::uint32_t key, REFIID iid, void** object) = 0;
  /// Stores an object, releasing the one that had the key. E_INVALIDARG: null object; E_FAIL: no place, or no
  /// table.
  virtual HRESULT STDMETHODCALLTYPE Set(std::uint32_t key, IUnknown* object) = 0;
  /// Not supported: E_FAIL.
  virtual HRESULT STDMETHODCALLTYPE Remove(std::uint32_t key) = 0;
  /// Not supported: E_FAIL.
  virtual HRESULT STDMETHODCALLTYPE GetKeys(IArray** keys) = 0;
  /// Releases every object; the table keeps its size.
  virtual HRESULT STDMETHODCALLTYPE Clear() = 0;
  /// All stored objects in the order of their slots.
  virtual HRESULT STDMETHODCALLTYPE GetValues(IArray** values) = 0;
};

}  // namespace NSdk
