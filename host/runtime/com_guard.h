#pragma once
// The guard on every entry into a library of the host: nothing that is thrown crosses its border.

#include <new>
#include <utility>

#include "sdk/com_base.h"

namespace NRuntime {

/// Runs a body that returns an HRESULT. Out of memory becomes E_OUTOFMEMORY, anything else E_FAIL.
template <class Body>
HRESULT Guarded(Body&& body) noexcept {
  try {
    return std::forward<Body>(body)();
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_FAIL;
  }
}

/// Makes an object for the caller of a COM method. E_POINTER: nowhere to put it.
template <class Object, class Interface, class... Arguments>
HRESULT HandOutNew(Interface** result, Arguments&&... arguments) {
  if (!result) return E_POINTER;
  return Guarded([&] {
    *result = new Object(std::forward<Arguments>(arguments)...);
    return S_OK;
  });
}

}  // namespace NRuntime
