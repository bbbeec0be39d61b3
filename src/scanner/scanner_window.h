#pragma once
// The scanner's window as its block sees it; there is none where the module has no windows.

#include <string>

#include "com/com_ptr.h"
#include "com/implements.h"
#include "scanner/model.h"
#include "sdk/host_application.h"
#include "sdk/views.h"

namespace NScanner {

class ScannerWindow : public NCom::Implements<NSdk::IView, NSdk::IModelObserver, NSdk::ISettingEvents> {
 public:
  /// The table that is shown; empty: none.
  virtual void SetModel(NCom::ComPtr<ZCANopenModel> model) = 0;
  virtual void SetCaption(const std::wstring& caption) = 0;
  /// Null while there is no window.
  virtual void* Handle() const = 0;
  virtual NSdk::WindowSize PreferredSize() const = 0;
  /// Where the window is, or was last, as text; empty: nowhere yet.
  virtual std::wstring Placement() const = 0;
  virtual void SetPlacement(const std::wstring& text) = 0;
};

/// Empty: the module has no windows here.
NCom::ComPtr<ScannerWindow> MakeScannerWindow();

}  // namespace NScanner
