#include <windows.h>

#include <shellapi.h>

#include "plugin/external_tools.h"

namespace NPlugin {

bool StartProgram(const ProgramStart& start) {
  constexpr INT_PTR kLastFailure = 32;
  const std::string folder = start.folder.string();
  const HINSTANCE result =
      ShellExecuteA(nullptr, "open", start.program.string().c_str(), start.parameters.c_str(),
                    folder.empty() ? nullptr : folder.c_str(), SW_SHOWNORMAL);
  return reinterpret_cast<INT_PTR>(result) > kLastFailure;
}

}  // namespace NPlugin
