#pragma once

#include <deque>

#include "common/win/resizeable_dialog.h"
#include "nmt/transmitter.h"

namespace NNmt {

/// "Send CANopen NMT command": a list of all nodes of a network and a button for each command.
///
/// Commands wait in a queue that a timer of the window empties, so that the window answers while they go out
/// one by one. A user who closes it meanwhile sees it go when the last one is sent, or at once when closing
/// it again.
class ZNMTNodeSelDlg final : private NCommon::ZResizeableDialog {
 public:
  ZNMTNodeSelDlg(ZNMTTransmitter& transmitter, std::uint8_t defaultCommand);

  void Show(HWND owner) { RunModal(owner); }

 private:
  bool OnInit() override;
  bool OnCommand(int id, int notification) override;
  void OnTimer(UINT_PTR id) override;

  void ShowNetwork();
  void FillList();
  void KeepColumnsInside();
  void SendToSelected(std::uint8_t command);
  void SendNext();
  void Close();

  ZNMTTransmitter& mTransmitter;
  std::uint8_t mDefaultCommand;
  UINT mDelay_ms = 10;            // between two commands
  std::deque<NmtRequest> mQueue;  // not sent yet
  bool mSending = false;          // the timer runs: the next command has to wait for it
  bool mClosing = false;
};

}  // namespace NNmt
