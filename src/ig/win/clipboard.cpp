#include "ig/win/clipboard.h"

#include <algorithm>
#include <cstring>

#include "ig/item_clipboard.h"

namespace NIg {
namespace {

constexpr int kAttempts = 10;
constexpr DWORD kPause_ms = 10;

UINT Format() { return RegisterClipboardFormatW(L"Ostrel CANopen message items"); }

// The clipboard of the whole desktop, while it lives. Others hold it for moments.
class OpenedClipboard {
 public:
  explicit OpenedClipboard(HWND owner) {
    for (int attempt = 0; attempt < kAttempts && !mOpen; ++attempt) {
      if (attempt > 0) Sleep(kPause_ms);
      mOpen = OpenClipboard(owner) != FALSE;
    }
  }
  ~OpenedClipboard() {
    if (mOpen) CloseClipboard();
  }
  OpenedClipboard(const OpenedClipboard&) = delete;
  OpenedClipboard& operator=(const OpenedClipboard&) = delete;
  explicit operator bool() const { return mOpen; }

 private:
  bool mOpen = false;
};

bool Put(UINT format, const void* bytes, std::size_t size) {
  const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, size);
  void* const place = memory ? GlobalLock(memory) : nullptr;
  if (!place) return false;
  std::memcpy(place, bytes, size);
  GlobalUnlock(memory);
  if (SetClipboardData(format, memory)) return true;
  GlobalFree(memory);
  return false;
}

}  // namespace

bool PutOnClipboard(HWND owner, const std::string& items, const std::wstring& text) {
  const OpenedClipboard clipboard(owner);
  if (!clipboard || !EmptyClipboard()) return false;
  if (!Put(Format(), items.c_str(), items.size() + 1)) return false;
  Put(CF_UNICODETEXT, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
  return true;
}

bool HasClipboardItems() { return IsClipboardFormatAvailable(Format()) != FALSE; }

std::string TakeFromClipboard(HWND owner) {
  const OpenedClipboard clipboard(owner);
  const HANDLE data = clipboard ? GetClipboardData(Format()) : nullptr;
  const auto* const bytes = data ? static_cast<const char*>(GlobalLock(data)) : nullptr;
  if (!bytes) return {};
  const std::size_t size = std::min<std::size_t>(GlobalSize(data), kMaxClipboardSize);
  const std::string items(bytes, std::find(bytes, bytes + size, '\0'));
  GlobalUnlock(data);
  return items;
}

}  // namespace NIg
