#include "plugin/win/baudrate_dialog.h"

#include "com/entry.h"
#include "com/task_text.h"
#include "plugin/pages.h"
#include "resources/resource_ids.h"
#include "resources/text.h"

namespace NPlugin {
namespace {

int ButtonAt(std::size_t position) { return IDC_BAUDRATE_10 + static_cast<int>(position); }

static_assert(IDC_BAUDRATE_10 + kBitRates == IDC_BAUDRATE_INVALID,
              "a button for each rate, and one behind them");

}  // namespace

NCom::ComPtr<NSdk::IPage> MakeBaudratePage() { return NCom::Make<ZCanOpenBaudrateDlg>().Get(); }

ZCanOpenBaudrateDlg::ZCanOpenBaudrateDlg() : Dialog(IDD_BAUDRATE) {}

HRESULT ZCanOpenBaudrateDlg::GetPageWindow(void** window) {
  NCom::ModuleScope scope;
  if (!window) return S_FALSE;
  *window = Window();
  return S_OK;
}

HRESULT ZCanOpenBaudrateDlg::Create(NSdk::IPageSite* site) {
  return NCom::Entry([&]() -> HRESULT {
    if (!site) return E_FAIL;
    mSite = site;
    void* parent = nullptr;
    const bool found = site->GetParentWindow(&parent) == S_OK && parent;
    return found && Dialog::Create(static_cast<HWND>(parent)) ? S_OK : E_FAIL;
  });
}

HRESULT ZCanOpenBaudrateDlg::Destroy() {
  return NCom::Entry([&] {
    Dialog::Destroy();
    mSite.Reset();
    mChannel.Reset();
  });
}

HRESULT ZCanOpenBaudrateDlg::SetTarget(IUnknown* channel) {
  return NCom::Entry([&] { mChannel = NCom::QueryFor<NSdk::ICanChannelTiming>(channel); });
}

HRESULT ZCanOpenBaudrateDlg::Show() {
  return NCom::Entry([&] {
    if (Window()) ShowWindow(Window(), SW_SHOWNA);
    BitTiming timing;
    if (!mChannel || FAILED(mChannel->GetTimingRegister0(&timing.register0)) ||
        FAILED(mChannel->GetTimingRegister1(&timing.register1))) {
      return;
    }
    mTiming = timing;
    EnableWindow(Control(IDC_BAUDRATE_INVALID), TRUE);
    ShowTiming();
  });
}

HRESULT ZCanOpenBaudrateDlg::Apply() {
  return NCom::Entry([&]() -> HRESULT {
    if (!mChannel || !Window()) return S_OK;
    const std::size_t chosen = ChosenButton();
    if (chosen < kBitRates) mTiming = BitRates()[chosen];
    const HRESULT result = mChannel->SetTimingRegisters(mTiming.register0, mTiming.register1);
    ShowTiming();
    return result;
  });
}

HRESULT ZCanOpenBaudrateDlg::Resize(std::int32_t width, std::int32_t height) {
  return NCom::Entry([&] {
    if (Window()) SetWindowPos(Window(), nullptr, 0, 0, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
  });
}

HRESULT ZCanOpenBaudrateDlg::GetPageCaption(wchar_t** caption) {
  return NCom::Entry([&] { return NCom::HandOut(NResources::LoadText(IDS_BAUDRATE_CAPTION), caption); });
}

// A timing that is one of the rates is never called invalid.
void ZCanOpenBaudrateDlg::ShowTiming() {
  const std::size_t position = FindBitRate(mTiming);
  if (position < kBitRates) EnableWindow(Control(IDC_BAUDRATE_INVALID), FALSE);
  CheckRadioButton(Window(), IDC_BAUDRATE_10, IDC_BAUDRATE_INVALID, ButtonAt(position));
}

std::size_t ZCanOpenBaudrateDlg::ChosenButton() const {
  std::size_t position = 0;
  while (position < kBitRates && IsDlgButtonChecked(Window(), ButtonAt(position)) != BST_CHECKED) ++position;
  return position;
}

bool ZCanOpenBaudrateDlg::OnCommand(int id, int notification) {
  if (id < IDC_BAUDRATE_10 || id > IDC_BAUDRATE_INVALID || notification != BN_CLICKED) return false;
  if (mSite) mSite->PageChanged();
  return true;
}

}  // namespace NPlugin
