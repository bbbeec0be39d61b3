#include "editors/item_editors.h"

#include "editors/win/item_editor.h"
#include "sdo/node_list.h"

namespace NEditors {
namespace {

using NCanopen::ZMsgItemInfo;

template <class Editor>
bool Run(ZMsgItemInfo& item, FormContext context, HWND owner) {
  return Editor(item, std::move(context)).Edit(owner);
}

constexpr struct {
  std::uint32_t code;
  bool (*run)(ZMsgItemInfo& item, FormContext context, HWND owner);
} kEditors[] = {
    {NCanopen::kItemSync, Run<ZCOIGSyncEditor>},     {NCanopen::kItemEmcy, Run<ZCOIGEmcyEditor>},
    {NCanopen::kItemHeartbeat, Run<ZCOIGHeartbeat>}, {NCanopen::kItemGuard, Run<ZCOIGGuarding>},
    {NCanopen::kItemNmt, Run<ZCOIGNMTEditor>},       {NCanopen::kItemPdo, Run<ZCOIGPDOEditor>},
    {NCanopen::kItemSdo, Run<ZCOIGSDOEditor>},       {NCanopen::kItemRtr, Run<ZCOIGRtrEditor>},
    {NCanopen::kItemPause, Run<ZCOIGPauseEditor>},   {NCanopen::kItemCyclicState, Run<ZCOIGTxStateEditor>},
};

class Editors final : public NCanopen::IItemEditors {
 public:
  bool Edit(ZMsgItemInfo& item, void* parentWindow, const NCanopen::EditContext* context) override {
    FormContext form;
    form.hexadecimal = item.ShowsHexadecimal();
    if (context != nullptr) {
      form.inCyclicList = context->inCyclicList;
      form.folder = context->baseFolder;
      NSdo::BuildDatabaseNodeList(context->channel, form.nodes);
    }
    for (const auto& editor : kEditors) {
      if (editor.code == item.GetTypeCode()) {
        return editor.run(item, std::move(form), static_cast<HWND>(parentWindow));
      }
    }
    return false;
  }
};

}  // namespace

void InstallItemEditors() {
  static Editors editors;
  NCanopen::SetItemEditors(&editors);
}

}  // namespace NEditors
