#pragma once

#include "common/event_subscription.h"
#include "common/win/image_list.h"
#include "common/win/resizeable_dialog.h"
#include "common/win/row_tip.h"
#include "scanner/scanner_window.h"

namespace NScanner {

/// The list of the nodes that the scanner has heard, in a window of its host. The list is virtual: texts and
/// images are asked for when they are painted, so a refresh costs what can be seen.
class ZCANopenScannerView final : public ScannerWindow, private NCommon::ZResizeableDialog {
 public:
  ZCANopenScannerView();
  ~ZCANopenScannerView() override { Destroy(); }

  // ScannerWindow
  void SetModel(NCom::ComPtr<ZCANopenModel> model) override { mModel = std::move(model); }
  void SetCaption(const std::wstring& caption) override;
  void* Handle() const override { return Window(); }
  NSdk::WindowSize PreferredSize() const override;
  std::wstring Placement() const override { return RememberedPlacement(); }
  void SetPlacement(const std::wstring& text) override { ZResizeableDialog::SetPlacement(text); }

  // IView
  /// S_FALSE: the site has no parent window.
  HRESULT STDMETHODCALLTYPE AttachWindow(NSdk::IWindowSite* site) override;
  HRESULT STDMETHODCALLTYPE DetachWindow() override;

  // IModelObserver
  HRESULT STDMETHODCALLTYPE OnModelAttached(NSdk::IModel* model) override;
  HRESULT STDMETHODCALLTYPE OnModelDetached(NSdk::IModel* model) override;
  HRESULT STDMETHODCALLTYPE Update(NSdk::IModel* model, std::uint32_t hint, IUnknown* object) override;

  // ISettingEvents
  HRESULT STDMETHODCALLTYPE OnSettingsChanged() override;

 private:
  // ZResizeableDialog
  bool OnInit() override;
  void OnTimer(UINT_PTR id) override;
  void OnDestroy() override;
  std::optional<LRESULT> OnNotify(NMHDR& notification) override;
  std::optional<LRESULT> OnMessage(UINT message, WPARAM wide, LPARAM lng) override;

  void ReadNumberBase();
  void FetchNodes();
  NCom::ComPtr<NSdk::ICANopenNode> NodeOf(int row) const;
  void AnswerCell(LVITEMW& item) const;
  void ShowMenu(POINT place);

  NCom::ComPtr<NSdk::IWindowSite> mSite;
  std::wstring mCaption;
  NCom::ComPtr<ZCANopenModel> mModel;
  NCom::ComPtr<NSdk::IArray> mNodes;  // as last fetched
  std::uint32_t mNumberBase = 10;
  NCommon::EventSubscription mSettings;
  NCommon::ImageList mImages;
  NCommon::RowTip mTip;
};

}  // namespace NScanner
