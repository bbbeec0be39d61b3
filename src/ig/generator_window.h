#pragma once
// What a running block asks of its window. The window carries each of these out in its own thread; a block
// without a window gets along without.

#include <cstddef>
#include <string>

#include "com/com_ptr.h"
#include "resources/resource_ids.h"
#include "sdk/runtime.h"

namespace NIg {

/// Private messages by which a timer callback reaches the window.
enum WindowMessage : unsigned {
  kMessageEnableControl = 0x409,  ///< WM_USER+9: control id, enable flag
  kMessageStopTimer = 0x40C,      ///< WM_USER+12: timer
  kMessageSelectItem = 0x40F,     ///< WM_USER+15: list control, item position
  kMessageSetText = 0x410,        ///< WM_USER+16: control, text
};

/// Controls of the block's window that a running block changes.
enum WindowControl : int {
  kControlExecute = IDC_IG_EXECUTE,
  kControlCyclicList = IDC_IG_CYCLIC,
  kControlSequenceList = IDC_IG_SEQUENCE,
  kControlStart = IDC_IG_START,
};

class GeneratorWindow {
 public:
  virtual ~GeneratorWindow() = default;

  virtual void EnableControl(WindowControl control, bool enable) = 0;
  virtual void StopTimer(const NCom::ComPtr<NSdk::ITimer>& timer) = 0;
  /// Gives the list the focus, then the item the focused and selected states.
  virtual void SelectItem(WindowControl list, std::size_t position) = 0;
  virtual void SetText(WindowControl control, const std::wstring& text) = 0;
  /// The control's text now; empty when there is no such control.
  virtual std::wstring Text(WindowControl control) const = 0;
};

/// Stands in where a block has no window: a timer stops at once, the rest has nothing to act on.
class NoWindow final : public GeneratorWindow {
 public:
  void EnableControl(WindowControl, bool) override {}
  void StopTimer(const NCom::ComPtr<NSdk::ITimer>& timer) override {
    if (timer) timer->Stop();
  }
  void SelectItem(WindowControl, std::size_t) override {}
  void SetText(WindowControl, const std::wstring&) override {}
  std::wstring Text(WindowControl) const override { return {}; }
};

}  // namespace NIg
