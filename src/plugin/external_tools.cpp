#include "plugin/external_tools.h"

#include "com/task_text.h"
#include "common/host_application.h"
#include "common/host_library.h"
#include "common/text.h"
#include "common/user_messages.h"
#include "resources/print.h"
#include "resources/resource_ids.h"
#include "resources/text.h"

namespace NPlugin {
namespace {

std::function<bool(const ProgramStart&)>& Starter() {
  static std::function<bool(const ProgramStart&)> starter = StartProgram;
  return starter;
}

// Beside the folder of the host's program; ends with a separator.
std::filesystem::path ToolFolder() {
  return NCommon::HostProgram().parent_path().parent_path() / "CANopen" / "";
}

// Folder of the open configuration when the configurator has left its file there, else empty.
std::filesystem::path ConfiguratorFolder() {
  NCom::TaskText path;
  const auto automation = NCommon::HostService<NSdk::IHostAutomation>();
  if (!automation || automation->GetConfigurationPath(path.Receive()) != S_OK) return {};
  const std::filesystem::path folder = NCommon::WideToPath(path.Text()).parent_path();
  std::error_code ignored;
  return std::filesystem::is_regular_file(folder / "brk.ini", ignored) ? folder : std::filesystem::path();
}

void TellThatItFailed(std::uint32_t textId, const std::filesystem::path& path) {
  const std::wstring text = NResources::Print(NResources::LoadText(textId), NCommon::PathToWide(path));
  NCommon::ShowUserMessage(text, NSdk::kMessageError);
}

}  // namespace

void SetProgramStarter(std::function<bool(const ProgramStart&)> starter) {
  Starter() = starter ? std::move(starter) : StartProgram;
}

void StartQuillon() {
  const std::filesystem::path program = ToolFolder() / "Quillon.exe";
  if (!Starter()({program, NResources::Print("-s -l %d", NCommon::HostLanguage()), {}})) {
    TellThatItFailed(IDS_TOOL_QUILLON_FAILED, program);
  }
}

void StartBrackwell() {
  const std::filesystem::path folder = ToolFolder();
  const std::string parameters = NResources::Print(
      "-f \"%s\" -l %02d -quick 1", NCommon::PathToItemText(ConfiguratorFolder()), NCommon::HostLanguage());
  for (const char* program : {"brk.exe", "brkviewer.exe"}) {
    if (Starter()({folder / program, parameters, folder})) return;
  }
  TellThatItFailed(IDS_TOOL_BRACKWELL_FAILED, folder);
}

}  // namespace NPlugin
