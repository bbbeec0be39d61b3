#pragma once

#include "com/com_ptr.h"
#include "com/implements.h"
#include "common/win/dialog.h"
#include "plugin/bit_rates.h"
#include "sdk/pages.h"

namespace NPlugin {

/// A page of the host's channel settings: the bit rates of CANopen, of which the chosen one becomes the
/// channel's bit timing. A timing that is none of them is shown as invalid, and stays as it is as long as no
/// other is chosen.
class ZCanOpenBaudrateDlg final : public NCom::Implements<NSdk::IPage, NSdk::IPageCaption>,
                                  private NCommon::Dialog {
 public:
  ZCanOpenBaudrateDlg();

  // IPage
  HRESULT STDMETHODCALLTYPE GetPageWindow(void** window) override;
  HRESULT STDMETHODCALLTYPE Create(NSdk::IPageSite* site) override;
  HRESULT STDMETHODCALLTYPE Destroy() override;
  HRESULT STDMETHODCALLTYPE SetTarget(IUnknown* channel) override;
  HRESULT STDMETHODCALLTYPE Show() override;
  HRESULT STDMETHODCALLTYPE Apply() override;
  HRESULT STDMETHODCALLTYPE Resize(std::int32_t width, std::int32_t height) override;

  // IPageCaption
  HRESULT STDMETHODCALLTYPE GetPageCaption(wchar_t** caption) override;

 private:
  bool OnCommand(int id, int notification) override;
  void ShowTiming();
  std::size_t ChosenButton() const;

  NCom::ComPtr<NSdk::IPageSite> mSite;
  NCom::ComPtr<NSdk::ICanChannelTiming> mChannel;
  BitTiming mTiming;
};

}  // namespace NPlugin
