#pragma once
// Owner of one reference to a COM object. Raw AddRef and Release stand nowhere else.

#include <cstddef>
#include <utility>

#include "sdk/com_base.h"

namespace NCom {

template <class Interface>
class ComPtr {
 public:
  ComPtr() = default;
  ComPtr(std::nullptr_t) {}
  /// Borrows the pointer: adds a reference of its own.
  ComPtr(Interface* object) : mObject(object) {
    if (mObject) mObject->AddRef();
  }
  ComPtr(const ComPtr& other) : ComPtr(other.mObject) {}
  ComPtr(ComPtr&& other) noexcept : mObject(std::exchange(other.mObject, nullptr)) {}
  ComPtr& operator=(ComPtr other) noexcept {
    std::swap(mObject, other.mObject);
    return *this;
  }
  ~ComPtr() { Reset(); }

  /// Takes over a reference that the caller owns.
  static ComPtr Adopt(Interface* object) {
    ComPtr result;
    result.mObject = object;
    return result;
  }

  Interface* Get() const { return mObject; }
  Interface* operator->() const { return mObject; }
  Interface& operator*() const { return *mObject; }
  explicit operator bool() const { return mObject != nullptr; }
  friend bool operator==(const ComPtr& left, std::nullptr_t) { return left.mObject == nullptr; }

  /// Releases the object. The member is empty before the object hears of it, so that a destructor that comes
  /// back here finds nothing.
  void Reset() {
    if (Interface* object = std::exchange(mObject, nullptr)) object->Release();
  }

  /// Gives the reference away.
  Interface* Detach() { return std::exchange(mObject, nullptr); }

  /// For a call that hands out a reference; what was held is released first.
  Interface** Receive() {
    Reset();
    return &mObject;
  }
  void** ReceiveVoid() { return reinterpret_cast<void**>(Receive()); }

  /// The same object by another interface; empty when it has none.
  template <class Other>
  ComPtr<Other> As() const {
    ComPtr<Other> other;
    if (mObject) mObject->QueryInterface(NSdk::IidOf<Other>(), other.ReceiveVoid());
    return other;
  }

  /// Hands out a further reference. E_POINTER: null result pointer.
  HRESULT CopyTo(Interface** object) const {
    if (!object) return E_POINTER;
    *object = ComPtr(*this).Detach();
    return S_OK;
  }

 private:
  Interface* mObject = nullptr;
};

/// Asks any COM object for another of its interfaces; empty when it has none or there is no object.
template <class Other, class Interface>
ComPtr<Other> QueryFor(Interface* object) {
  return ComPtr<Interface>(object).template As<Other>();
}

/// Makes an object of a class built on Implements<>; the result holds its first reference.
template <class Class, class... Arguments>
ComPtr<Class> Make(Arguments&&... arguments) {
  return ComPtr<Class>::Adopt(new Class(std::forward<Arguments>(arguments)...));
}

}  // namespace NCom
