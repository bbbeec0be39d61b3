#include "scanner/win/scanner_view.h"

#include <windowsx.h>

#include "com/entry.h"
#include "common/host_application.h"
#include "common/win/dpi.h"
#include "common/win/list_view.h"
#include "resources/resource_ids.h"
#include "resources/text.h"
#include "scanner/node_texts.h"

namespace NScanner {
namespace {

constexpr COLORREF kTransparent = RGB(0xFF, 0xFF, 0xFF);
constexpr int kImages[] = {IDB_SCAN_NODES, IDB_SCAN_NODES_24, IDB_SCAN_NODES_32};
constexpr UINT_PTR kRefreshTimer = 1;
constexpr UINT kRefresh_ms = 500;
constexpr std::uint32_t kFirstHintThatKeepsRows = 3;
constexpr NSdk::WindowSize kFirstSize = {360, 240};  // the columns, and the scroll bar beside them
constexpr NCommon::AnchoredControl kAnchored[] = {{IDC_SCAN_NODES, NCommon::kAnchorAll}};

}  // namespace

NCom::ComPtr<ScannerWindow> MakeScannerWindow() { return NCom::Make<ZCANopenScannerView>().Get(); }

ZCANopenScannerView::ZCANopenScannerView() : ZResizeableDialog(IDD_SCANNER, kAnchored) {}

// ---- the window in the host

HRESULT ZCANopenScannerView::AttachWindow(NSdk::IWindowSite* site) {
  return NCom::Entry([&]() -> HRESULT {
    if (!site) return E_POINTER;
    Destroy();
    void* parent = nullptr;
    if (site->GetParentWindow(&parent) != S_OK || !parent) return S_FALSE;
    if (!Create(static_cast<HWND>(parent))) return E_FAIL;
    mSite = site;
    SetCaption(mCaption);
    ShowWindow(Window(), SW_SHOWNA);
    return S_OK;
  });
}

HRESULT ZCANopenScannerView::DetachWindow() {
  return NCom::Entry([&] {
    Destroy();
    mSite.Reset();
  });
}

void ZCANopenScannerView::SetCaption(const std::wstring& caption) {
  mCaption = caption;
  if (!Window()) return;
  SetWindowTextW(Window(), mCaption.c_str());
  if (mSite) mSite->SetCaption(mCaption.c_str());
}

NSdk::WindowSize ZCANopenScannerView::PreferredSize() const {
  if (!Remembered()) return kFirstSize;
  const NCommon::Area& area = Remembered()->area;
  return {NCommon::Unscaled(area.Width(), Window()), NCommon::Unscaled(area.Height(), Window())};
}

bool ZCANopenScannerView::OnInit() {
  ZResizeableDialog::OnInit();
  const HWND list = Control(IDC_SCAN_NODES);
  if (mImages.Load(kImages, kTransparent, Window())) {
    ListView_SetImageList(list, mImages.Get(), LVSIL_SMALL);
  }
  for (const Column& column : Columns()) {
    const int format = column.alignment == Alignment::Centre ? LVCFMT_CENTER : LVCFMT_LEFT;
    NCommon::AddColumn(list, NResources::LoadText(column.textId), column.width, format);
  }
  ListView_SetExtendedListViewStyle(list, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER);
  mTip.Attach(list, [this](int row) { return ToolTip(NodeOf(row).Get()); });
  FetchNodes();
  ReadNumberBase();
  mSettings.Begin<NSdk::ISettingEvents>(Identity());
  SetTimer(Window(), kRefreshTimer, kRefresh_ms, nullptr);
  return true;
}

void ZCANopenScannerView::OnDestroy() {
  ZResizeableDialog::OnDestroy();
  KillTimer(Window(), kRefreshTimer);
  mTip.Detach();
  mSettings.End();
  ListView_SetImageList(Control(IDC_SCAN_NODES), nullptr, LVSIL_SMALL);
  mImages.Reset();
  mNodes.Reset();
}

// ---- settings of the host

void ZCANopenScannerView::ReadNumberBase() { mNumberBase = NCommon::HostNumberBase().value_or(mNumberBase); }

HRESULT ZCANopenScannerView::OnSettingsChanged() {
  return NCom::Entry([&] {
    ReadNumberBase();
    if (Window()) NCommon::RedrawRows(Control(IDC_SCAN_NODES));
  });
}

// ---- the model

HRESULT ZCANopenScannerView::OnModelAttached(NSdk::IModel*) {
  NCom::ModuleScope scope;
  return S_OK;
}

HRESULT ZCANopenScannerView::OnModelDetached(NSdk::IModel*) {
  NCom::ModuleScope scope;
  return S_OK;
}

HRESULT ZCANopenScannerView::Update(NSdk::IModel*, std::uint32_t hint, IUnknown*) {
  return NCom::Entry([&]() -> HRESULT {
    if (!Window()) return E_FAIL;
    if (hint < kFirstHintThatKeepsRows) FetchNodes();
    NCommon::RedrawRows(Control(IDC_SCAN_NODES));
    return S_OK;
  });
}

void ZCANopenScannerView::FetchNodes() {
  mNodes.Reset();
  std::uint32_t count = 0;
  if (mModel) mNodes = mModel->GetNodes();
  if (mNodes) mNodes->GetCount(&count);
  const HWND list = Control(IDC_SCAN_NODES);
  const int shown = ListView_GetItemCount(list);
  if (static_cast<int>(count) < shown) mTip.Hide();
  if (static_cast<int>(count) == shown) return;  // setting it draws the list once more
  ListView_SetItemCountEx(list, static_cast<int>(count), LVSICF_NOSCROLL);
}

// The one place where observers hear of changes: so the list is touched by the thread of its window alone.
void ZCANopenScannerView::OnTimer(UINT_PTR id) {
  if (id == kRefreshTimer && mModel) mModel->NotifyObservers();
}

// ---- rows

NCom::ComPtr<NSdk::ICANopenNode> ZCANopenScannerView::NodeOf(int row) const {
  NCom::ComPtr<NSdk::ICANopenNode> node;
  if (mNodes) {
    mNodes->GetElement(static_cast<std::uint32_t>(row), NSdk::IidOf<NSdk::ICANopenNode>(),
                       node.ReceiveVoid());
  }
  NCom::Require(node, "node");
  return node;
}

void ZCANopenScannerView::AnswerCell(LVITEMW& item) const {
  const auto node = NodeOf(item.iItem);
  if (item.mask & LVIF_TEXT) {
    NCommon::AnswerText(item, CellText(node.Get(), static_cast<std::uint32_t>(item.iSubItem), mNumberBase));
  }
  if (item.mask & LVIF_IMAGE) item.iImage = static_cast<int>(RowImage(node.Get()));
}

std::optional<LRESULT> ZCANopenScannerView::OnNotify(NMHDR& notification) {
  if (notification.idFrom != IDC_SCAN_NODES || notification.code != LVN_GETDISPINFOW) return std::nullopt;
  AnswerCell(reinterpret_cast<NMLVDISPINFOW&>(notification).item);
  return 0;
}

// ---- the context menu

std::optional<LRESULT> ZCANopenScannerView::OnMessage(UINT message, WPARAM wide, LPARAM lng) {
  if (message != WM_CONTEXTMENU) return ZResizeableDialog::OnMessage(message, wide, lng);
  const bool byKeyboard = GET_X_LPARAM(lng) == -1 && GET_Y_LPARAM(lng) == -1;
  const POINT clicked = {GET_X_LPARAM(lng), GET_Y_LPARAM(lng)};
  ShowMenu(byKeyboard ? NCommon::KeyboardMenuPlace(Control(IDC_SCAN_NODES)) : clicked);
  return 0;
}

// While the menu is open other calls come in: the host may even take the window away.
void ZCANopenScannerView::ShowMenu(POINT place) {
  const NCom::ComPtr<ZCANopenScannerView> self(this);
  mTip.Hide();
  const HMENU menu = CreatePopupMenu();
  AppendMenuW(menu, MF_STRING, IDS_SCAN_CLEAR, NResources::LoadText(IDS_SCAN_CLEAR).c_str());
  const BOOL chosen =
      TrackPopupMenu(menu, TPM_RIGHTBUTTON | TPM_RETURNCMD, place.x, place.y, 0, Window(), nullptr);
  DestroyMenu(menu);
  if (chosen == IDS_SCAN_CLEAR && mModel) mModel->Clear();
}

}  // namespace NScanner
