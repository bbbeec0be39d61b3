#pragma once
// The guard on every entry from the host: `return Entry([&] { ... });`

#include <new>
#include <type_traits>

#include "com/assertion.h"
#include "com/module_scope.h"
#include "sdk/com_base.h"

namespace NCom {

/// Runs the body of an entry inside a ModuleScope. The body returns an HRESULT, or nothing for S_OK. Out of
/// memory becomes E_OUTOFMEMORY, anything unforeseen E_FAIL; the module's own assertion passes.
template <class Body>
HRESULT Entry(Body&& body) {
  ModuleScope scope;
  try {
    if constexpr (std::is_void_v<std::invoke_result_t<Body>>) {
      body();
      return S_OK;
    } else {
      return body();
    }
  } catch (const ZAssertion&) {
    throw;
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (...) {
    return E_FAIL;
  }
}

}  // namespace NCom
