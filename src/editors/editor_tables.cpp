#include "editors/editor_tables.h"

#include "canopen/item.h"

namespace NEditors {
namespace {

constexpr EditorField kCycle = {"SendCycle"};
constexpr EditorField kDelay = {"SendDelay"};

constexpr EditorField kSync[] = {{"COBID"}, kCycle, kDelay};

constexpr EditorField kEmcy[] = {
    {"NodeID", FieldControl::List, Choices::Nodes},
    {"COBID", FieldControl::List, Choices::Emergencies},
    {"ErrCode", FieldControl::List, Choices::ErrorCodes},
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
    {"NodeID", FieldControl::List, Choices::Nodes},
    {"COBID", FieldControl::List, Choices::ErrorControl},
    kCycle,
    kDelay,
    {"NMTState", FieldControl::List, Choices::NodeStates},
};

constexpr EditorField kGuard[] = {
    {"NodeID", FieldControl::List, Choices::Nodes},
    {"COBID", FieldControl::List, Choices::ErrorControl},
    kCycle,
    kDelay,
    {"NMTState", FieldControl::List, Choices::NodeStates},
    {"ToggleBitStartValue", FieldControl::CheckBox},
};

constexpr EditorField kNmt[] = {
    {"NodeID", FieldControl::List, Choices::NodesOrAll},
    kCycle,
    kDelay,
    {"NMTState", FieldControl::List, Choices::NmtCommands},
};

constexpr EditorField kPdo[] = {
    {"NodeID", FieldControl::List, Choices::Nodes},
    {"COBID", FieldControl::List, Choices::Pdos},
    {"Data", FieldControl::Data},
    {"DLC"},
    kCycle,
    kDelay,
    {"AutoSize", FieldControl::CheckBox},
};

constexpr EditorField kSdo[] = {
    {"NodeID", FieldControl::List, Choices::Nodes},
    {"COBIDTx", FieldControl::List, Choices::SdoRequests},
    {"COBIDRx", FieldControl::List, Choices::SdoResponses},
    kCycle,
    kDelay,
    {"Index", FieldControl::List, Choices::Objects},
    {"SubIndex"},
    {"AutoCANID", FieldControl::CheckBox},
    {"AutoSize", FieldControl::CheckBox},
    {"BlockTransfer", FieldControl::CheckBox},
    {"Upload", FieldControl::CheckBox},
    {"ObjectSize"},
    {"Data", FieldControl::Data},
};

constexpr EditorField kRtr[] = {{"COBID", FieldControl::List, Choices::Pdos}, kCycle, kDelay, {"DLC"}};

constexpr EditorField kPause[] = {{"PauseMilliSec"}};

constexpr EditorField kCyclicState[] = {{"StartFlag", FieldControl::Radio}};

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
