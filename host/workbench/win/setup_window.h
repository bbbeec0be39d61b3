#pragma once

#include <vector>

#include "host/workbench/win/window.h"

#include <commctrl.h>

#include "host/workbench/workbench.h"

namespace NWorkbench {

/// What the user does in the setup window is carried out by the main window.
class SetupCommands {
 public:
  virtual ~SetupCommands() = default;
  /// A CommandId for the selected line, later: the tree is then through with what it does now.
  virtual void PostCommand(int id) = 0;
  virtual void ShowSetupMenu(POINT screen) = 0;
};

/// The setups with their blocks as a tree.
class SetupWindow final : public ChildWindow {
 public:
  /// A line of the tree.
  struct Place {
    enum class Kind { Heading, Simulation, SendLine, Measurement };
    static constexpr std::size_t kNoBlock = static_cast<std::size_t>(-1);

    Kind kind = Kind::Heading;
    std::uint32_t channel = 0;  ///< of a network
    std::size_t block = kNoBlock;
    bool isFree = false;
  };

  SetupWindow(HWND client, Workbench& workbench, SetupCommands& commands, RECT place);

  void Refresh() override;
  bool Translate(MSG& message) override;
  /// The line that is selected.
  Place Selected() const;
  /// The same for the module.
  NRuntime::ComPtr<NSdk::ISelectionContext> Selection() const;

 private:
  LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;
  LRESULT OnNotify(const NMHDR& header);
  HTREEITEM Add(HTREEITEM parent, const std::wstring& text, Place place);
  void AddBlocks(HTREEITEM parent, Place::Kind kind, std::uint32_t channel);
  bool Belongs(const PlacedBlock& block, Place::Kind kind, std::uint32_t channel) const;

  Workbench& mWorkbench;
  SetupCommands& mCommands;
  HWND mTree = nullptr;
  std::vector<Place> mPlaces;  // by the number that is kept with the line
};

}  // namespace NWorkbench
