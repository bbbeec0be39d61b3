#include "canopen/item.h"

#include "canopen/record_item.h"
#include "resources/print.h"

namespace NCanopen {

namespace {
IItemEditors* gEditors = nullptr;
}

void SetItemEditors(IItemEditors* editors) { gEditors = editors; }

bool EditItem(ZMsgItemInfo& item, void* parentWindow, const EditContext* context) {
  return gEditors != nullptr && gEditors->Edit(item, parentWindow, context);
}

std::string MillisecondsText(std::uint32_t milliseconds) { return NResources::Print("%lu ms", milliseconds); }

}  // namespace NCanopen
