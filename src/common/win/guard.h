#pragma once
// The guard on every call from the system: window and dialog procedures, timer callbacks.

#include "com/module_scope.h"

namespace NCommon {

/// Runs the body inside a ModuleScope. Nothing that is thrown reaches the system: `otherwise` is answered
/// instead.
template <class Answer, class Body>
Answer SystemEntry(Answer otherwise, Body&& body) {
  const NCom::ModuleScope scope;
  try {
    return body();
  } catch (...) {
    return otherwise;
  }
}

}  // namespace NCommon
