#include "common/user_messages.h"

#include "common/host_application.h"

namespace NCommon {
namespace {

constexpr wchar_t kTitle[] = L"Ostrel";

}  // namespace

void ShowUserMessage(const std::wstring& text, NSdk::MessageIcon icon) {
  if (const auto dialogs = HostService<NSdk::IUserDialogs>()) {
    dialogs->ShowMessage(kTitle, text.c_str(), icon);
  } else {
    ShowOwnMessage(kTitle, text, icon);
  }
}

}  // namespace NCommon
