#pragma once
// Text that crosses an interface is allocated with the task allocator and freed by who receives it.

#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "sdk/com_base.h"

namespace NCom {

/// A copy that the receiver of an out-parameter frees. Throws std::bad_alloc.
inline wchar_t* CopyToTask(std::wstring_view text) {
  auto* copy = static_cast<wchar_t*>(CoTaskMemAlloc((text.size() + 1) * sizeof(wchar_t)));
  if (!copy) throw std::bad_alloc();
  std::memcpy(copy, text.data(), text.size() * sizeof(wchar_t));
  copy[text.size()] = L'\0';
  return copy;
}

/// Hands text out through a result pointer. E_POINTER: null.
inline HRESULT HandOut(std::wstring_view text, wchar_t** result) {
  if (!result) return E_POINTER;
  *result = CopyToTask(text);
  return S_OK;
}

/// Owner of text that was handed out to us.
class TaskText {
 public:
  TaskText() = default;
  TaskText(const TaskText&) = delete;
  TaskText& operator=(const TaskText&) = delete;
  ~TaskText() { CoTaskMemFree(mText); }

  wchar_t** Receive() {
    CoTaskMemFree(std::exchange(mText, nullptr));
    return &mText;
  }
  wchar_t* Detach() { return std::exchange(mText, nullptr); }
  std::wstring Text() const { return mText ? std::wstring(mText) : std::wstring(); }

 private:
  wchar_t* mText = nullptr;
};

}  // namespace NCom
