#pragma once
// Tells the user of a crash, in a program of its own: the one that has crashed can be relied on for nothing.

#include <cstdint>
#include <filesystem>
#include <string>

namespace NWorkbench {

/// What the dialog is to know, on the command line of its program.
struct CrashNotice {
  static constexpr const wchar_t* kOption = L"--after-crash";

  std::filesystem::path report;  ///< text of the crash
  std::string folder;            ///< name of the process's folder of unsaved work
  std::uint32_t language = 0;
};

/// Where processes keep their unsaved work, below the program's folder of states.
std::filesystem::path RescueRoot(const std::filesystem::path& state);

/// What StartCrashDialog() tells from now on.
void PrepareCrashDialog(const CrashNotice& notice);
/// Starts this program again with the dialog. For ReportCrashes: allocates nothing.
void StartCrashDialog();
/// The dialog; returns when the user has answered. Unsaved work that is not wanted is removed below `root`.
void ShowCrashDialog(const CrashNotice& notice, const std::filesystem::path& root);

}  // namespace NWorkbench
