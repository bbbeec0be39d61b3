#include "editors/editor_tables.h"

#include "canopen/item.h"

namespace NEditors {
namespace {

constexpr EditorField kCycle = {"SendCycle"};
constexpr EditorField kDelay = {"SendDelay"};

constexpr EditorField kSync[] = {{"COBID"}, kCycle, kDelay};

constexpr EditorField kEmcy[] = {
    {"NodeID", Control::List, Choices::Nodes},
    {"COBID", Control::List, Choices::Emergencies},
    {"ErrCode", Control::List, Choices::ErrorCodes},
    {"Errreg"},
    {"ManSpec1"},
    {"ManSpec2"},
    {"ManSpec3"},
    {"ManSpec4"},
    {"ManSpec5"},
    kCycle,
    kDelay,
};

constexpr EditorField kHeartbeat[] = {
    {"NodeID", Control::List, Choices::Nodes},
    {"COBID", Control::List, Choices::ErrorControl},
    kCycle,
    kDelay,
    {"NMTState", Control::List, Choices::NodeStates},
};

constexpr EditorField kGuard[] = {
    {"NodeID", Control::List, Choices::Nodes},
    {"COBID", Control::List, Choices::ErrorControl},
    kCycle,
    kDelay,
    {"NMTState", Control::List, Choices::NodeStates},
    {"ToggleBitStartValue", Control::CheckBox},
};

constexpr EditorField kNmt[] = {
    {"NodeID", Control::List, Choices::NodesOrAll},
    kCycle,
    kDelay,
    {"NMTState", Control::List, Choices::NmtCommands},
};

constexpr EditorField kPdo[] = {
    {"NodeID", Control::List, Choices::Nodes},
    {"COBID", Control::List, Choices::Pdos},
    {"Data", Control::Data},
    {"DLC"},
    kCycle,
    kDelay,
    {"AutoSize", Control::CheckBox},
};

constexpr EditorField kSdo[] = {
    {"NodeID", Control::List, Choices::Nodes},
    {"COBIDTx", Control::List, Choices::SdoRequests},
    {"COBIDRx", Control::List, Choices::SdoResponses},
    kCycle,
    kDelay,
    {"Index", Control::List, Choices::Objects},
    {"SubIndex"},
    {"AutoCANID", Control::CheckBox},
    {"AutoSize", Control::CheckBox},
    {"BlockTransfer", Control::CheckBox},
    {"Upload", Control::CheckBox},
    {"ObjectSize"},
    {"Data", Control::Data},
};

constexpr EditorField kRtr[] = {{"COBID", Control::List, Choices::Pdos}, kCycle, kDelay, {"DLC"}};

constexpr EditorField kPause[] = {{"PauseMilliSec"}};

constexpr EditorField kCyclicState[] = {{"StartFlag", Control::Radio}};

}  // namespace

std::span<const EditorField> EditorFields(std::uint32_t itemCode) {
  switch (itemCode) {
    case NCanopen::kItemSync:
      return kSync;
    case NCanopen::kItemEmcy:
      return kEmcy;
    case NCanopen::kItemHeartbeat:
      return kHeartbeat;
    case NCanopen::kItemGuard:
      return kGuard;
    case NCanopen::kItemNmt:
      return kNmt;
    case NCanopen::kItemPdo:
      return kPdo;
    case NCanopen::kItemSdo:
      return kSdo;
    case NCanopen::kItemRtr:
      return kRtr;
    case NCanopen::kItemPause:
      return kPause;
    case NCanopen::kItemCyclicState:
      return kCyclicState;
    default:
      return {};
  }
}

}  // namespace NEditors
