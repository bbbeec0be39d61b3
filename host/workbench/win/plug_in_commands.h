#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "host/workbench/win/tool_bar.h"
#include "host/workbench/workbench.h"

namespace NWorkbench {

/// The commands that the module has registered, as menus and buttons show them.
class PlugInCommands {
 public:
  /// `module` is the file of the module, whose resources hold the images.
  PlugInCommands(Workbench& workbench, std::filesystem::path module)
      : mWorkbench(workbench), mModule(std::move(module)) {}

  /// Lets the module bring its commands up to date. Comes before anything below.
  void Update();

  /// Appends these commands to a menu, those left out that are hidden.
  void Append(HMENU menu, const std::vector<std::wstring>& names);
  /// "Insert.CANopenScanner" and the like.
  std::vector<std::wstring> InsertCommands() const;
  /// Those of them that insert blocks of a simulation setup.
  std::vector<std::wstring> SimulationCommands() const;
  /// A group's commands for a menu: what a drop-down of the group holds is found there.
  std::vector<std::wstring> MenuCommands(const NRuntime::CommandRegistry::Group& group) const;
  void AppendButtons(std::vector<ToolButton>& buttons) const;
  /// The drop-down of a button. Null: there is nothing to choose.
  HMENU MakeDropDown(int id);

  /// A command of the menus or of a drop-down. False: it is none of these.
  bool Execute(int id, std::uint32_t channel);

 private:
  bool IsEnabled(const NRuntime::CommandRegistry::Command& command) const;
  const NRuntime::CommandRegistry::Command* Find(const std::wstring& name) const;
  int IdOf(const NRuntime::CommandRegistry::Command& command) const;
  HMENU MakeDropDown(NSdk::IDropDownCommand& command);
  HICON LoadIconOf(std::uint32_t number, int size) const;

  Workbench& mWorkbench;
  std::filesystem::path mModule;
  std::vector<NRuntime::ComPtr<NSdk::IDropDownCommand>> mDropDowns;  // each with its range of numbers
};

}  // namespace NWorkbench
