#pragma once
// What every block answers its host about its window (NSdk::IUIEventsEx).

#include "com/module_scope.h"
#include "sdk/views.h"

namespace NCommon {

/// GetBlockWindow; `handle` is null while there is no window.
inline HRESULT AnswerBlockWindow(void* handle, void** window) {
  NCom::ModuleScope scope;
  if (!window) return E_POINTER;
  if (!handle) return S_FALSE;
  *window = handle;
  return S_OK;
}

/// GetSizes
inline HRESULT AnswerSizes(const NSdk::WindowSize& preferred, const NSdk::WindowSize& minimum,
                           NSdk::WindowSize* preferredResult, NSdk::WindowSize* minimumResult) {
  NCom::ModuleScope scope;
  if (!preferredResult || !minimumResult) return E_POINTER;
  *preferredResult = preferred;
  *minimumResult = minimum;
  return S_OK;
}

}  // namespace NCommon
