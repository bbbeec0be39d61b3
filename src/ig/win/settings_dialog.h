#pragma once

#include "common/win/dialog.h"
#include "common/win/tracking_tip.h"
#include "ig/settings_form.h"

namespace NIg {

/// "CANopen IG settings". Where the host gives blocks their channel, the list of channels is hidden.
class ZCOIGSettings final : private NCommon::Dialog {
 public:
  ZCOIGSettings(GeneratorNumbers& numbers, bool hasSimulationSetup);

  /// False: the user left it and nothing is stored.
  bool Edit(HWND owner) { return RunModal(owner) == IDOK; }

 private:
  bool OnInit() override;
  bool OnCommand(int id, int notification) override;

  void FillChannels(std::uint32_t chosen);
  SettingsEntry ReadEntry() const;
  void Accept();

  GeneratorNumbers& mNumbers;
  bool mHasSimulationSetup;
  NCommon::TrackingTip mBalloon{NCommon::TrackingTip::Shape::Balloon};
};

}  // namespace NIg
