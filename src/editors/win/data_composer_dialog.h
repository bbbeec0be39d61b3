#pragma once

#include <optional>

#include "common/win/dialog.h"
#include "common/win/tracking_tip.h"
#include "editors/data_composer.h"

namespace NEditors {

/// "Data definition". What it does is the data composer's; this carries texts to and fro.
class ZMsgDataComposerDlg final : private NCommon::Dialog {
 public:
  ZMsgDataComposerDlg(const DataDefinition& definition, const DataPurpose& purpose);

  /// Empty: the user left it.
  std::optional<DataDefinition> Compose(HWND owner);

 private:
  bool OnInit() override;
  bool OnCommand(int id, int notification) override;

  void Show();
  void ShowType();
  void Browse();
  void Accept();

  DataComposer mComposer;
  std::filesystem::path mFolder;
  std::optional<DataDefinition> mResult;
  NCommon::TrackingTip mBalloon{NCommon::TrackingTip::Shape::Balloon};
  bool mShowing = false;  // texts are set by the program, not typed
};

}  // namespace NEditors
