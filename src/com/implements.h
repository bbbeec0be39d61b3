#pragma once
// A class names its interfaces once and has reference counting, QueryInterface and the module lock:
//   class ZArray final : public Implements<IArray> { ... };
// Objects are made with NCom::Make<>() and start with one reference.

#include <atomic>
#include <tuple>

#include "com/module.h"
#include "sdk/com_base.h"

namespace NCom {

/// An ordinary object keeps the module loaded as long as it lives.
struct LockWhileAlive {
  static void Created() { TheModule().Lock(); }
  static void Destroyed() { TheModule().Unlock(); }
  static void CountRoseTo(ULONG) {}
  static void CountFellTo(ULONG) {}
};

/// A cached object is kept by the module itself: the first reference does not keep the module loaded, further
/// ones do.
struct LockWhileShared {
  static void Created() {}
  static void Destroyed() {}
  static void CountRoseTo(ULONG count) {
    if (count == 2) TheModule().Lock();
  }
  static void CountFellTo(ULONG count) {
    if (count == 1) TheModule().Unlock();
  }
};

template <class LockPolicy, class... Interfaces>
class ImplementsWith : public Interfaces... {
 public:
  ImplementsWith(const ImplementsWith&) = delete;
  ImplementsWith& operator=(const ImplementsWith&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (!object) return E_POINTER;
    *object = Find(iid);
    if (!*object) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }

  ULONG STDMETHODCALLTYPE AddRef() override {
    const ULONG count = mReferences.fetch_add(1, std::memory_order_relaxed) + 1;
    LockPolicy::CountRoseTo(count);
    return count;
  }

  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG count = mReferences.fetch_sub(1, std::memory_order_acq_rel) - 1;
    LockPolicy::CountFellTo(count);
    if (count == 0) delete this;
    return count;
  }

  /// The object's identity: the same pointer whichever interface was asked for it.
  IUnknown* Identity() { return static_cast<FirstInterface*>(this); }

 protected:
  ImplementsWith() { LockPolicy::Created(); }
  virtual ~ImplementsWith() { LockPolicy::Destroyed(); }

 private:
  using FirstInterface = std::tuple_element_t<0, std::tuple<Interfaces...>>;

  void* Find(REFIID iid) {
    if (iid == NSdk::IidOf<IUnknown>()) return Identity();
    void* found = nullptr;
    (void)((iid == NSdk::IidOf<Interfaces>() && (found = static_cast<Interfaces*>(this))) || ...);
    return found;
  }

  std::atomic<ULONG> mReferences{1};
};

template <class... Interfaces>
using Implements = ImplementsWith<LockWhileAlive, Interfaces...>;

template <class... Interfaces>
using ImplementsCached = ImplementsWith<LockWhileShared, Interfaces...>;

}  // namespace NCom
