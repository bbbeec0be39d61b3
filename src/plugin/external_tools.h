#pragma once
// The two programs beside the host that the plug-in's commands start.

#include <filesystem>
#include <functional>
#include <string>

namespace NPlugin {

struct ProgramStart {
  std::filesystem::path program;
  std::string parameters;
  std::filesystem::path folder;  ///< working directory; empty: the host's
};

/// The editor of device descriptions. The user is told when it cannot be started.
void StartQuillon();
/// The network configurator with the configuration's folder, else its viewer. The user is told when neither
/// can be started.
void StartBrackwell();

/// Starts a program, shown normally. False: it could not be started. One per platform.
bool StartProgram(const ProgramStart& start);

/// Puts something else in the place of StartProgram; null takes it back.
void SetProgramStarter(std::function<bool(const ProgramStart&)> starter);

}  // namespace NPlugin
