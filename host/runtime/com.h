#pragma once
// COM for the objects of the host. The host and the module share nothing but the contract in sdk/, so the
// host has its own pointer and its own base. Everything runs on one thread: counts are plain numbers.

#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>

#include "sdk/com_base.h"

namespace NRuntime {

/// Owner of one reference.
template <class Interface>
class ComPtr {
 public:
  ComPtr() = default;
  ComPtr(std::nullptr_t) {}
  /// Adds a reference of its own to a borrowed pointer.
  ComPtr(Interface* borrowed) : mPointer(borrowed) {
    if (mPointer) mPointer->AddRef();
  }
  ComPtr(const ComPtr& other) : ComPtr(other.mPointer) {}
  ComPtr(ComPtr&& other) noexcept : mPointer(std::exchange(other.mPointer, nullptr)) {}
  ~ComPtr() { Reset(); }

  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(mPointer, other.mPointer);
    return *this;
  }

  /// Takes over the first reference of an object that was just made.
  static ComPtr Own(Interface* made) {
    ComPtr owner;
    owner.mPointer = made;
    return owner;
  }

  Interface* Get() const { return mPointer; }
  Interface* operator->() const { return mPointer; }
  Interface& operator*() const { return *mPointer; }
  explicit operator bool() const { return mPointer != nullptr; }

  void Reset() {
    if (Interface* released = std::exchange(mPointer, nullptr)) released->Release();
  }

  /// Where a call writes a pointer that it hands out.
  Interface** Out() {
    Reset();
    return &mPointer;
  }

  /// Gives the reference to the caller of a COM method. E_POINTER: nowhere to put it.
  HRESULT MoveTo(Interface** object) && {
    if (!object) return E_POINTER;
    *object = std::exchange(mPointer, nullptr);
    return S_OK;
  }

 private:
  Interface* mPointer = nullptr;
};

/// Asks an object for another interface. Empty: no object, or it refuses. An object that answers S_OK and
/// hands out nothing counts as refusing.
template <class Wanted, class Interface>
ComPtr<Wanted> Query(Interface* object) {
  void* found = nullptr;
  if (!object || FAILED(object->QueryInterface(NSdk::IidOf<Wanted>(), &found))) return nullptr;
  return ComPtr<Wanted>::Own(static_cast<Wanted*>(found));
}

template <class Wanted, class Interface>
ComPtr<Wanted> Query(const ComPtr<Interface>& object) {
  return Query<Wanted>(object.Get());
}

/// Base of the host's objects: names the interfaces once, counts references and answers QueryInterface.
template <class First, class... Others>
class Implements : public First, public Others... {
 public:
  Implements(const Implements&) = delete;
  Implements& operator=(const Implements&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (!object) return E_POINTER;
    void* found = iid == NSdk::IidOf<IUnknown>() ? static_cast<First*>(this) : Find<First, Others...>(iid);
    *object = found;
    if (!found) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }

  ULONG STDMETHODCALLTYPE AddRef() override { return ++mReferences; }

  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --mReferences;
    if (left == 0) delete this;
    return left;
  }

 protected:
  Implements() = default;
  virtual ~Implements() = default;

  ULONG References() const { return mReferences; }

 private:
  template <class Candidate, class... Rest>
  void* Find(REFIID iid) {
    if (iid == NSdk::IidOf<Candidate>()) return static_cast<Candidate*>(this);
    if constexpr (sizeof...(Rest) > 0) return Find<Rest...>(iid);
    return nullptr;
  }

  ULONG mReferences = 1;
};

template <class Object, class... Arguments>
ComPtr<Object> Make(Arguments&&... arguments) {
  return ComPtr<Object>::Own(new Object(std::forward<Arguments>(arguments)...));
}

/// Owner of a text that a COM method has handed out.
class ReceivedText {
 public:
  ReceivedText() = default;
  ReceivedText(const ReceivedText&) = delete;
  ReceivedText& operator=(const ReceivedText&) = delete;
  ~ReceivedText() { CoTaskMemFree(mText); }

  wchar_t** Out() { return &mText; }
  /// Empty when nothing was handed out.
  std::wstring Text() const { return mText ? std::wstring(mText) : std::wstring(); }

 private:
  wchar_t* mText = nullptr;
};

/// Hands a copy of a text to the caller of a COM method. E_POINTER: nowhere to put it; E_OUTOFMEMORY.
inline HRESULT HandOutText(std::wstring_view text, wchar_t** result) {
  if (!result) return E_POINTER;
  auto* copy = static_cast<wchar_t*>(CoTaskMemAlloc((text.size() + 1) * sizeof(wchar_t)));
  if (!copy) return E_OUTOFMEMORY;
  std::memcpy(copy, text.data(), text.size() * sizeof(wchar_t));
  copy[text.size()] = L'\0';
  *result = copy;
  return S_OK;
}

/// Writes a result of a COM method. E_POINTER: nowhere to put it.
template <class Value>
HRESULT HandOut(Value value, Value* result) {
  if (!result) return E_POINTER;
  *result = value;
  return S_OK;
}

}  // namespace NRuntime
