#include <windows.h>

#include <shellapi.h>

#include "common/text.h"
#include "plugin/external_tools.h"

namespace NPlugin {

bool StartProgram(const ProgramStart& start) {
  constexpr INT_PTR kLastFailure = 32;
  // Not path::string(), which is UTF-8 and not the code page of the system.
  const std::string program = NCommon::PathToItemText(start.program);
  const std::string folder = NCommon::PathToItemText(start.folder);
  const HINSTANCE result = ShellExecuteA(nullptr, "open", program.c_str(), start.parameters.c_str(),
                                         folder.empty() ? nullptr : folder.c_str(), SW_SHOWNORMAL);
  return reinterpret_cast<INT_PTR>(result) > kLastFailure;
}

}  // namespace NPlugin
