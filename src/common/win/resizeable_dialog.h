#pragma once

#include <optional>
#include <span>
#include <vector>

#include "common/placement.h"
#include "common/win/dialog.h"

namespace NCommon {

// Edges of the window that a control keeps its distance to.
inline constexpr unsigned kAnchorLeft = 1;
inline constexpr unsigned kAnchorTop = 2;
inline constexpr unsigned kAnchorRight = 4;
inline constexpr unsigned kAnchorBottom = 8;
inline constexpr unsigned kAnchorAll = kAnchorLeft | kAnchorTop | kAnchorRight | kAnchorBottom;

/// A control that follows the window's size. An edge that is not named moves with the opposite one; without
/// left and right, or top and bottom, a control stays where it is.
struct AnchoredControl {
  int id = 0;
  unsigned edges = 0;
};

/// A dialog whose controls follow its size. It is never made smaller than its template, and remembers where
/// it was. Overriders of OnInit, OnSize, OnDestroy and OnMessage call these here.
class ZResizeableDialog : public Dialog {
 public:
  /// Where the window is, or was when it went, as text; empty: it was nowhere yet.
  std::wstring RememberedPlacement() const;
  /// Puts the window there, now or when it is made; at a place that can be seen. A text that is no placement
  /// changes nothing.
  void SetPlacement(const std::wstring& text);

 protected:
  /// The table lasts as long as the program.
  ZResizeableDialog(int templateId, std::span<const AnchoredControl> anchored)
      : Dialog(templateId), mAnchored(anchored) {}

  /// The placement that was set, or that the window had when it went; empty: there was none.
  const std::optional<Placement>& Remembered() const { return mPlacement; }

  bool OnInit() override;
  void OnSize(int width, int height) override;
  void OnDestroy() override;
  std::optional<LRESULT> OnMessage(UINT message, WPARAM wide, LPARAM lng) override;

 private:
  std::optional<Placement> CurrentPlacement() const;
  void ApplyPlacement();
  RECT DesignedArea(int id) const;

  std::span<const AnchoredControl> mAnchored;
  std::vector<RECT> mDesigned;  // where the template puts these controls, in a client area of this size
  SIZE mDesignedClient = {};
  SIZE mMinimum = {};
  std::optional<Placement> mPlacement;
};

}  // namespace NCommon
