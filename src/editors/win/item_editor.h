#pragma once
// The dialogs in which items are edited: one frame for all of them. Fields, checks and what depends on what
// are the item form's; a dialog has its template, and its controls are found by the fields they show.

#include <string>
#include <vector>

#include "common/win/dialog.h"
#include "common/win/tracking_tip.h"
#include "editors/item_form.h"
#include "editors/win/prop_validator.h"
#include "resources/resource_ids.h"

namespace NEditors {

class ItemEditor : private NCommon::Dialog, public IPropValidator {
 public:
  /// Modal to `owner`. True: the user ended it with OK and the item is changed.
  bool Edit(HWND owner) { return RunModal(owner) == IDOK; }

  bool Check(std::wstring& message, int& control) const override;

 protected:
  /// `item` is borrowed, and of the kind that the template is for.
  ItemEditor(int templateId, NCanopen::ZMsgItemInfo& item, FormContext context);

 private:
  enum class Direction { Load, Save };

  bool OnInit() override;
  bool OnCommand(int id, int notification) override;
  std::optional<LRESULT> OnMessage(UINT message, WPARAM wide, LPARAM lng) override;

  bool Exchange(Direction direction);
  int ControlOf(std::size_t field) const;
  void ShowBases();
  void ShowField(std::size_t field);
  void ShowPreview();
  void Show();
  void FillList(std::size_t field);
  void FillLists();
  bool OnFieldCommand(std::size_t field, int notification);
  void OnChosen(std::size_t field);
  void Compose();

  NCanopen::ZMsgItemInfo& mItem;
  bool mHexadecimal;
  ItemForm mForm;
  std::vector<std::vector<FieldChoice>> mChoices;  // what the lists hold, per field
  std::string mListedNode;                         // node-ID that the lists are for
  NCommon::TrackingTip mBalloon{NCommon::TrackingTip::Shape::Balloon};
  bool mShowing = false;  // controls are set by the program, not by the user
};

template <int TemplateId>
class EditorOf final : public ItemEditor {
 public:
  EditorOf(NCanopen::ZMsgItemInfo& item, FormContext context)
      : ItemEditor(TemplateId, item, std::move(context)) {}
};

using ZCOIGSyncEditor = EditorOf<IDD_SYNC_EDITOR>;
using ZCOIGEmcyEditor = EditorOf<IDD_EMCY_EDITOR>;
using ZCOIGHeartbeat = EditorOf<IDD_HEARTBEAT_EDITOR>;
using ZCOIGGuarding = EditorOf<IDD_GUARDING_EDITOR>;
using ZCOIGNMTEditor = EditorOf<IDD_NMT_EDITOR>;
using ZCOIGPDOEditor = EditorOf<IDD_PDO_EDITOR>;
using ZCOIGSDOEditor = EditorOf<IDD_SDO_EDITOR>;
using ZCOIGRtrEditor = EditorOf<IDD_RTR_EDITOR>;
using ZCOIGPauseEditor = EditorOf<IDD_PAUSE_EDITOR>;
using ZCOIGTxStateEditor = EditorOf<IDD_TX_STATE_EDITOR>;

}  // namespace NEditors
