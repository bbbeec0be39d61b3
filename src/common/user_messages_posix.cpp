#include <cstdio>

#include "common/text.h"
#include "common/user_messages.h"

namespace NCommon {

void ShowOwnMessage(const std::wstring& title, const std::wstring& text, NSdk::MessageIcon) {
  std::fprintf(stderr, "%s: %s\n", ToItemText(title).c_str(), ToItemText(text).c_str());
}

bool HasWindows() { return false; }

}  // namespace NCommon
