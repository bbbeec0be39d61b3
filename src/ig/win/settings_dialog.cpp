#include "ig/win/settings_dialog.h"

#include "channels/channel_manager.h"
#include "common/host_application.h"
#include "common/text.h"
#include "common/win/help.h"
#include "ig/settings_dialog.h"
#include "resources/resource_ids.h"

namespace NIg {
namespace {

constexpr struct {
  SettingsFieldId field;
  int control;
  std::string SettingsEntry::*text;
} kFields[] = {
    {SettingsFieldId::ServiceDelay, IDC_SETTINGS_PAUSE, &SettingsEntry::serviceDelay},
    {SettingsFieldId::SdoTimeout, IDC_SETTINGS_SDO_TIMEOUT, &SettingsEntry::sdoTimeout},
    {SettingsFieldId::SdoBlockSize, IDC_SETTINGS_SDO_BLOCK_SIZE, &SettingsEntry::sdoBlockSize},
};

int ControlOf(SettingsFieldId id) {
  for (const auto& field : kFields) {
    if (field.field == id) return field.control;
  }
  return IDC_SETTINGS_OUTPUT;
}

}  // namespace

HRESULT EditSettings(void* parentWindow, GeneratorNumbers& numbers) {
  const HWND owner = parentWindow ? static_cast<HWND>(parentWindow) : GetActiveWindow();
  return ZCOIGSettings(numbers, NCommon::HasSimulationSetup()).Edit(owner) ? S_OK : S_FALSE;
}

ZCOIGSettings::ZCOIGSettings(GeneratorNumbers& numbers, bool hasSimulationSetup)
    : Dialog(IDD_IG_SETTINGS), mNumbers(numbers), mHasSimulationSetup(hasSimulationSetup) {}

bool ZCOIGSettings::OnInit() {
  const SettingsEntry shown = ShowSettings(mNumbers);
  for (const auto& field : kFields) SetControlText(field.control, NCommon::ToWide(shown.*field.text));
  FillChannels(mNumbers.channel);
  const int visible = mHasSimulationSetup ? SW_HIDE : SW_SHOW;
  ShowWindow(Control(IDC_SETTINGS_OUTPUT_LABEL), visible);
  ShowWindow(Control(IDC_SETTINGS_OUTPUT), visible);
  return true;
}

void ZCOIGSettings::FillChannels(std::uint32_t chosen) {
  const HWND list = Control(IDC_SETTINGS_OUTPUT);
  NChannels::ZChannelManager& channels = NChannels::TheChannelManager();
  channels.Refresh();
  const std::uint32_t count = channels.ChannelCount();
  for (std::uint32_t position = 0; position < count; ++position) {
    const NChannels::Channel& channel = channels.At(position);
    const std::wstring name = NChannels::DisplayName(channel);
    const LRESULT row = SendMessageW(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
    SendMessageW(list, CB_SETITEMDATA, static_cast<WPARAM>(row), static_cast<LPARAM>(channel.number));
    if (channel.number == chosen) SendMessageW(list, CB_SETCURSEL, static_cast<WPARAM>(row), 0);
  }
}

SettingsEntry ZCOIGSettings::ReadEntry() const {
  SettingsEntry entry;
  for (const auto& field : kFields) entry.*field.text = NCommon::ToItemText(ControlText(field.control));
  // A hidden list keeps the channel even where the configuration has it no more.
  if (mHasSimulationSetup) {
    entry.channel = mNumbers.channel;
    return entry;
  }
  const HWND list = Control(IDC_SETTINGS_OUTPUT);
  const LRESULT row = SendMessageW(list, CB_GETCURSEL, 0, 0);
  if (row != CB_ERR) {
    entry.channel =
        static_cast<std::uint32_t>(SendMessageW(list, CB_GETITEMDATA, static_cast<WPARAM>(row), 0));
  }
  return entry;
}

void ZCOIGSettings::Accept() {
  const auto fault = TakeSettings(ReadEntry(), mHasSimulationSetup, mNumbers);
  if (!fault) return End(IDOK);
  const HWND control = Control(ControlOf(fault->field));
  if (fault->message.empty()) {
    SetFocus(control);
  } else {
    NCommon::ShowBalloonAt(mBalloon, control, fault->message);
  }
}

bool ZCOIGSettings::OnCommand(int id, int notification) {
  if (notification == EN_CHANGE) mBalloon.Hide();
  if (id == IDOK) Accept();
  if (id == IDHELP) NCommon::OpenHelp(Window());
  return id == IDOK || id == IDHELP;
}

}  // namespace NIg
