#include "nmt/win/node_sel_dialog.h"

#include "canopen/vocabulary.h"
#include "common/win/dpi.h"
#include "common/win/help.h"
#include "common/win/list_view.h"
#include "common/win/resources.h"
#include "nmt/node_dialog.h"
#include "nmt/node_selection.h"
#include "resources/resource_ids.h"
#include "resources/text.h"

namespace NNmt {
namespace {

constexpr UINT_PTR kSendTimer = 1;

constexpr unsigned kTopRight = NCommon::kAnchorTop | NCommon::kAnchorRight;
constexpr unsigned kBottomRight = NCommon::kAnchorBottom | NCommon::kAnchorRight;
constexpr NCommon::AnchoredControl kAnchored[] = {
    {IDC_NMT_NODES, NCommon::kAnchorAll},
    {IDC_NMT_OPERATIONAL, kTopRight},
    {IDC_NMT_PREOPERATIONAL, kTopRight},
    {IDC_NMT_STOP, kTopRight},
    {IDC_NMT_RESET, kTopRight},
    {IDCANCEL, kBottomRight},
    {IDHELP, kBottomRight},
};

struct Button {
  constexpr Button(int id, NCanopen::NmtCommand specifier)
      : control(id), command(static_cast<std::uint8_t>(specifier)) {}
  int control;
  std::uint8_t command;
};
constexpr Button kButtons[] = {{IDC_NMT_OPERATIONAL, NCanopen::NmtCommand::Start},
                               {IDC_NMT_PREOPERATIONAL, NCanopen::NmtCommand::EnterPreOperational},
                               {IDC_NMT_STOP, NCanopen::NmtCommand::Stop},
                               {IDC_NMT_RESET, NCanopen::NmtCommand::ResetNode}};

}  // namespace

void ShowNodeDialog(ZNMTTransmitter& transmitter, std::uint8_t command) {
  ZNMTNodeSelDlg(transmitter, command).Show(GetActiveWindow());
}

ZNMTNodeSelDlg::ZNMTNodeSelDlg(ZNMTTransmitter& transmitter, std::uint8_t defaultCommand)
    : ZResizeableDialog(IDD_NMT_SELECTION, kAnchored),
      mTransmitter(transmitter),
      mDefaultCommand(defaultCommand) {}

bool ZNMTNodeSelDlg::OnInit() {
  ZResizeableDialog::OnInit();
  for (const auto& [kind, metric] : {std::pair(ICON_SMALL, SM_CXSMICON), std::pair(ICON_BIG, SM_CXICON)}) {
    const int size = GetSystemMetrics(metric);
    const HANDLE icon = LoadImageW(NCommon::LibraryOf(RT_GROUP_ICON, IDI_OSTREL),
                                   MAKEINTRESOURCEW(IDI_OSTREL), IMAGE_ICON, size, size, LR_SHARED);
    SendMessageW(Window(), WM_SETICON, static_cast<WPARAM>(kind), reinterpret_cast<LPARAM>(icon));
  }
  const HWND list = Control(IDC_NMT_NODES);
  ListView_SetExtendedListViewStyle(list, LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES);
  NCommon::AddColumn(list, NResources::LoadText(IDS_NMT_COL_NODE_ID), 90);
  NCommon::AddColumn(list, NResources::LoadText(IDS_NMT_COL_NODE_NAME), 300);
  ShowNetwork();
  FillList();
  KeepColumnsInside();
  for (const auto& button : kButtons) {
    if (button.command == mDefaultCommand) {
      SendMessageW(Window(), DM_SETDEFID, static_cast<WPARAM>(button.control), 0);
    }
  }
  NCommon::SelectRow(list, 0);
  SetFocus(list);
  return false;
}

// Dialogs do not grow quite as the dpi do: the names take what is left for them.
void ZNMTNodeSelDlg::KeepColumnsInside() {
  const HWND list = Control(IDC_NMT_NODES);
  RECT inside = {};
  GetClientRect(list, &inside);
  const int left = static_cast<int>(inside.right) - ListView_GetColumnWidth(list, 0);
  if (ListView_GetColumnWidth(list, 1) > left) ListView_SetColumnWidth(list, 1, left);
}

// The name stands behind its label, which is the first control, as far as the list below it goes.
void ZNMTNodeSelDlg::ShowNetwork() {
  const HWND label = GetWindow(Window(), GW_CHILD);
  const auto font = SendMessageW(label, WM_GETFONT, 0, 0);
  const HDC screen = GetDC(label);
  const HGDIOBJ before = SelectObject(screen, reinterpret_cast<HFONT>(font));
  wchar_t text[64] = {};
  GetWindowTextW(label, text, static_cast<int>(std::size(text)));
  RECT written = {};
  DrawTextW(screen, text, -1, &written, DT_CALCRECT | DT_SINGLELINE);
  SelectObject(screen, before);
  ReleaseDC(label, screen);
  RECT area = {};
  GetWindowRect(label, &area);
  MapWindowPoints(nullptr, Window(), reinterpret_cast<POINT*>(&area), 2);
  const int used = written.right + NCommon::Scaled(6, Window());
  SetWindowPos(label, nullptr, 0, 0, used, area.bottom - area.top, SWP_NOMOVE | SWP_NOZORDER);
  const HWND name = CreateWindowExW(0, WC_STATICW, mTransmitter.Network().c_str(),
                                    WS_CHILD | WS_VISIBLE | SS_NOPREFIX | SS_ENDELLIPSIS, area.left + used,
                                    area.top, area.right - area.left - used, area.bottom - area.top, Window(),
                                    nullptr, nullptr, nullptr);
  SendMessageW(name, WM_SETFONT, static_cast<WPARAM>(font), FALSE);
}

void ZNMTNodeSelDlg::FillList() {
  const HWND list = Control(IDC_NMT_NODES);
  std::vector<DatabaseNode> databaseNodes;
  mTransmitter.GetDatabaseNodes(databaseNodes);
  for (const DatabaseNode& row : SelectionRows(databaseNodes)) {
    if (!NCanopen::IsNodeId(row.nodeId)) continue;
    NCommon::AddRow(list, {std::to_wstring(row.nodeId), row.name}, static_cast<LPARAM>(row.nodeId));
  }
}

bool ZNMTNodeSelDlg::OnCommand(int id, int) {
  for (const auto& button : kButtons) {
    if (button.control == id) {
      SendToSelected(button.command);
      return true;
    }
  }
  if (id == IDHELP) NCommon::OpenHelp(Window());
  if (id == IDCANCEL) Close();
  return id == IDHELP || id == IDCANCEL;
}

void ZNMTNodeSelDlg::SendToSelected(std::uint8_t command) {
  for (const LPARAM nodeId : NCommon::SelectedData(Control(IDC_NMT_NODES))) {
    mQueue.push_back({command, static_cast<std::uint8_t>(nodeId)});
  }
  if (!mSending && !mQueue.empty()) SendNext();
}

// The timer goes on for one more turn behind the last command, so that the next one keeps its distance as
// well.
void ZNMTNodeSelDlg::OnTimer(UINT_PTR id) {
  if (id != kSendTimer) return;
  if (!mQueue.empty()) return SendNext();
  KillTimer(Window(), kSendTimer);
  mSending = false;
  if (mClosing) End(IDCANCEL);
}

void ZNMTNodeSelDlg::SendNext() {
  const NmtRequest request = mQueue.front();
  mQueue.pop_front();
  mTransmitter.SendCommand(&request);
  // From the command that has just left: a timer that went on by itself would follow a late turn with an
  // early one.
  mSending = SetTimer(Window(), kSendTimer, mDelay_ms, nullptr) != 0;
}

void ZNMTNodeSelDlg::Close() {
  if (!mSending || mClosing) return End(IDCANCEL);
  mClosing = true;
  SetFocus(Control(IDCANCEL));
  for (const auto& button : kButtons) EnableWindow(Control(button.control), FALSE);
}

}  // namespace NNmt
