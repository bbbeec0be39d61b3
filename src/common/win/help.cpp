#include "common/win/help.h"

#include <shellapi.h>

#include "common/help_manager.h"
#include "common/user_messages.h"
#include "resources/print.h"
#include "resources/resource_ids.h"
#include "resources/text.h"

namespace NCommon {

void OpenHelp(HWND owner) {
  constexpr INT_PTR kLastFailure = 32;
  const std::wstring file = HelpFile().wstring();
  const HINSTANCE result = ShellExecuteW(owner, L"open", file.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
  if (reinterpret_cast<INT_PTR>(result) > kLastFailure) return;
  ShowUserMessage(NResources::Print(NResources::LoadText(IDS_HELP_MISSING), file), NSdk::kMessageExclamation);
}

}  // namespace NCommon
