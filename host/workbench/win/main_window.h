#pragma once

#include <chrono>
#include <map>
#include <memory>
#include <optional>

#include "host/workbench/used_files.h"
#include "host/workbench/win/block_window.h"
#include "host/workbench/win/messages_window.h"
#include "host/workbench/win/plug_in_commands.h"
#include "host/workbench/win/recent_files.h"
#include "host/workbench/win/setup_window.h"
#include "host/workbench/win/tool_bar.h"
#include "host/workbench/win/trace_window.h"
#include "host/workbench/work_keeper.h"
#include "host/workbench/workbench.h"

namespace NWorkbench {

struct StartOptions {
  std::filesystem::path module;
  std::filesystem::path folder;         ///< that the program lies in
  std::filesystem::path configuration;  ///< empty: a new one
  bool start = false;                   ///< the measurement, at once
  std::filesystem::path state;          ///< folder for unsaved work; empty: none is kept
  std::filesystem::path report;         ///< that a crash would leave; empty: none
};

/// The main window: menus, toolbar, status bar, and the windows inside.
class MainWindow final : public Window, private WorkbenchEvents, private SetupCommands {
 public:
  explicit MainWindow(const StartOptions& options);
  ~MainWindow() override;

  Workbench& Host() { return *mWorkbench; }

  /// Shows it and opens the configuration. What is wrong with it is told in a message box.
  void Begin(int show);
  bool Translate(MSG& message) override;

 private:
  // ---- what the workbench tells
  void OnSetupChanged() override;
  void OnBlockLeaving(IUnknown& block) override;
  void OnMeasurementChanged() override;
  void OnCannotStart(const std::string& text) override;
  void OnTrouble(const std::string& text) override;

  // ---- window
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
  LRESULT Default(UINT message, WPARAM wParam, LPARAM lParam) override {
    return DefFrameProcW(Handle(), mClient, message, wParam, lParam);
  }
  LRESULT OnNotify(NMHDR& header);
  void OnTick();
  void MakeInside();
  void Arrange();
  void RefreshLater();
  void SettleLater();
  void RefreshAll();
  void ShowTitle();
  void ShowStatus();
  void ShowToolBar();
  void BuildMenu();
  void FillCommandMenus();
  void ShowStates(HMENU menu) const;
  void DropDown(int id);
  int Choose(HMENU menu, POINT place);
  void OnMenuClosed();
  ChildWindow* ActiveChild() const;
  /// By their names in configurations.
  std::vector<std::pair<std::string, ChildWindow*>> InnerWindows() const;

  // ---- commands
  bool OnCommand(int id);
  bool OnFileCommand(int id);
  bool OnOptionCommand(int id);
  bool OnWindowCommand(int id);
  bool OnBlockCommand(int id);
  void PostCommand(int id) override { PostMessageW(Handle(), WM_COMMAND, static_cast<WPARAM>(id), 0); }
  void ShowSetupMenu(POINT screen) override;
  bool ConfirmStop();
  bool ConfirmDiscard();
  bool ConfirmLeaving(std::vector<PlacedBlock> blocks);
  bool Save(bool askName);
  void OpenAsked();
  bool Open(const std::filesystem::path& file);
  void New();
  void AfterOpening();
  void StartMeasurement();
  void ShowChannels();
  void ChangeSettings(const std::function<void(NConfiguration::Document&)>& change);
  void OpenBlock(std::size_t position, bool remembered);
  void OpenRememberedBlocks();
  NConfiguration::Window OwnPlace() const;
  std::map<std::string, NConfiguration::Window> InnerPlaces() const;
  /// As it would be saved now.
  NConfiguration::Document CaptureWithWindows() const;
  void RememberWindows();
  void RestoreWindows();
  void Close();

  // ---- files that other programs change
  void LookAtFiles();
  bool CanAskAboutFiles() const;
  bool WouldLoseWork(const UsedFile& file);
  void OfferReload(const UsedFile& file);
  void Reload(const UsedFile& file);

  // ---- unsaved work
  void StartKeeping();
  void PrepareCrash();
  bool OfferLeftWork();
  void TakeUp(RescueFolder& folder, const UnsavedWork& work);
  bool KeepUnsaved();
  void KeepUnsavedInTime();

  StartOptions mOptions;
  std::unique_ptr<Workbench> mWorkbench;
  std::optional<PlugInCommands> mCommands;
  RecentFiles mRecent;
  HWND mClient = nullptr, mStatus = nullptr;
  std::wstring mShownStatus[4];
  HACCEL mKeys = nullptr;
  HMENU mInsertMenu = nullptr, mRecentMenu = nullptr;
  std::vector<std::pair<std::wstring, HMENU>> mGroupMenus;
  std::unique_ptr<ToolBar> mTools;
  std::unique_ptr<SetupWindow> mSetup;
  std::unique_ptr<TraceWindow> mTrace;
  std::unique_ptr<MessagesWindow> mMessages;
  std::map<const IUnknown*, std::unique_ptr<BlockWindow>> mBlocks;
  bool mRefreshPosted = false, mRefreshIsDue = false;
  bool mMenuIsOpen = false;  // what it shows stays meanwhile
  bool mRemembersBlocks = true;
  int mTicks = 0;
  UsedFileWatch mFiles;
  std::chrono::steady_clock::time_point mNextLook;
  std::optional<WorkKeeper> mKeeper;  // empty: none is kept
  std::chrono::steady_clock::time_point mNextKeeping;
  std::string mKeepingFault;  // as told last
};

/// The main menu with the program's own commands; the module's are filled in later.
struct MainMenu {
  HMENU bar = nullptr, recent = nullptr, insert = nullptr, window = nullptr;
  std::vector<std::pair<std::wstring, HMENU>> groups;
};
MainMenu MakeMainMenu(const Workbench& workbench, const RecentFiles& recent);
HACCEL MakeKeys();

/// Asks for a file. Empty: cancelled.
std::filesystem::path AskForFile(HWND owner, bool save, const std::filesystem::path& proposed);

}  // namespace NWorkbench
