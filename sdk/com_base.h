#pragma once
// The ground that every interface of this contract stands on: the few COM types, result codes and the task
// allocator. Windows brings its own; elsewhere the same names have the same layout and values.
//
// Rules that hold for every interface in sdk/ unless its own comment says otherwise:
//   Ownership  An interface pointer handed out carries one reference, which the receiver releases; one
//              passed in is borrowed for the call, and who keeps it adds a reference. Text handed out is
//              allocated with CoTaskMemAlloc and freed by the receiver with CoTaskMemFree; text passed in is
//              borrowed.
//   Threads    Everything is apartment-threaded: the host calls, and is called, on one thread.
//   Errors     Every method returns an HRESULT. A method that fails leaves its outputs untouched.

#include <cstddef>
#include <cstdint>

#ifdef _WIN32
#include <objbase.h>
#include <unknwn.h>
#else
#include <cstdlib>
#include <cstring>

struct GUID {
  std::uint32_t Data1;
  std::uint16_t Data2;
  std::uint16_t Data3;
  std::uint8_t Data4[8];
};

inline bool operator==(const GUID& left, const GUID& right) {
  return std::memcmp(&left, &right, sizeof(GUID)) == 0;
}

using IID = GUID;
using CLSID = GUID;
using REFIID = const IID&;
using REFCLSID = const CLSID&;
using HRESULT = std::int32_t;
using ULONG = std::uint32_t;
using BOOL = std::int32_t;

#define STDMETHODCALLTYPE
#define STDAPICALLTYPE

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = static_cast<HRESULT>(0x80004001);
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002);
inline constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003);
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000E);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057);
inline constexpr HRESULT CLASS_E_NOAGGREGATION = static_cast<HRESULT>(0x80040110);
inline constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = static_cast<HRESULT>(0x80040111);

constexpr bool SUCCEEDED(HRESULT result) { return result >= 0; }
constexpr bool FAILED(HRESULT result) { return result < 0; }

inline void* CoTaskMemAlloc(std::size_t size) { return std::malloc(size); }
inline void CoTaskMemFree(void* memory) { std::free(memory); }

struct IUnknown {
  virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) = 0;
  virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
  virtual ULONG STDMETHODCALLTYPE Release() = 0;
};

struct IClassFactory : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) = 0;
  virtual HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) = 0;
};
#endif

namespace NSdk {

/// Identifier of an interface: `IidOf<IPlugIn>()`. Interfaces of this contract carry theirs as `kIid`.
template <class Interface>
inline constexpr IID kIidOf = Interface::kIid;

template <>
inline constexpr IID kIidOf<IUnknown> = {
    0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

template <>
inline constexpr IID kIidOf<IClassFactory> = {
    0x00000001, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

template <class Interface>
constexpr const IID& IidOf() {
  return kIidOf<Interface>;
}

}  // namespace NSdk
