#include <gmock/gmock.h>

#include <set>

#include "canopen/flow_items.h"
#include "canopen/item_kinds.h"
#include "canopen/message_items.h"

namespace NCanopen {
namespace {

// ---- texts

template <class Item, class Change>
std::string Attributes(bool hexadecimal, Change change) {
  Item item(&hexadecimal);
  change(item.record);
  return item.GetAttributesText();
}
template <class Item, class Change>
void ExpectAttributes(Change change, const std::string& hexadecimal, const std::string& decimal) {
  EXPECT_EQ(Attributes<Item>(true, change), hexadecimal);
  EXPECT_EQ(Attributes<Item>(false, change), decimal);
}

TEST(ItemText, FollowsTheDisplaySwitch) {
  ExpectAttributes<ZPDOItemInfo>(
      [](auto& r) {
        r.cobId = 0x20000800;
        r.nodeId = 100;
        r.dlc = 12;
        r.data = "uint:10 100%s";
      },
      "Node-ID 100, COBID 800x, DLC 12, Data uint:10 100%s",
      "Node-ID 100, COBID 800x, DLC 12,Data uint:10 100%s");
  const auto sdo = [](auto& r) {
    r.nodeId = 20;
    r.index = 0x1A00;
    r.subIndex = 17;
    r.objectSize = 1024;
    r.data = "bytearr:01";
  };
  ExpectAttributes<ZSDOItemInfo>(
      sdo, "Download, Node-ID 20, COBID 601, Object 1A00sub11, Size 1024, Data bytearr:01",
      "Download, Node-ID 20, COBID 601, Object 1A00sub17, Size 1024, Data bytearr:01");
  ExpectAttributes<ZSDOItemInfo>(
      [&](auto& r) {
        sdo(r);
        r.upload = 1;
      },
      "Upload, Node-ID 20, COBID 601, Object 1A00sub11", "Upload, Node-ID 20, COBID 601, Object 1A00sub17");
  ExpectAttributes<ZNMTItemInfo>([](auto& r) { r.command = 130; }, "Node-ID 1, CS 82", "Node-ID 1, CS 130");
  ExpectAttributes<ZSyncItemInfo>([](auto&) {}, "COBID 80", "COBID 80");
  ExpectAttributes<ZEmcyItemInfo>(
      [](auto& r) {
        r.errorCode = 0xFF10;
        r.errorRegister = 129;
        r.manufacturer = {0, 15, 16, 200, 255};
      },
      "Node-ID 1, COBID 81, ErrCode FF10, ErrReg 81, ManSpecific 0,F,10,C8,FF",
      "Node-ID 1, COBID 81, ErrCode 65296, ErrReg 129, ManSpecific 0,15,16,200,255");
  const auto toggled = [](auto& r) { SetToggle(r, true); };
  ExpectAttributes<ZHBeatItemInfo>(toggled, "Node-ID 1, COBID 701, State 7F",
                                   "Node-ID 1, COBID 701, State 127");
  ExpectAttributes<ZGuardingItemInfo>(toggled, "Node-ID 1, COBID 701, State 7F, Toggle 1",
                                      "Node-ID 1, COBID 701, State 127, Toggle 1");
  ExpectAttributes<ZRTRItemInfo>([](auto& r) { r.dlc = 15; }, "COBID 181, DLC 15", "COBID 181, DLC 15");
  ExpectAttributes<ZPauseItemInfo>([](auto&) {}, "1000 ms", "1000 ms");
  ExpectAttributes<ZCycSendStateItemInfo>([](auto&) {}, "Start", "Start");
  ExpectAttributes<ZCycSendStateItemInfo>([](auto& r) { r.start = 0; }, "Stop", "Stop");
  EXPECT_EQ(ZNMTItemInfo(nullptr, 11).GetAttributesText(), "Node-ID 11, CS 1");
}

TEST(ItemText, OfCycleAndDelay) {
  ZEmcyItemInfo emcy(nullptr);
  emcy.record.delay_ms = 0xFFFFFFFF;
  EXPECT_EQ(emcy.GetCycleText(), "3000 ms");
  EXPECT_EQ(emcy.GetDelayText(), "4294967295 ms");
  const ZPauseItemInfo pause(nullptr);
  EXPECT_EQ(pause.GetCycleText(), "-");
  EXPECT_EQ(pause.GetDelayText(), "-");
  EXPECT_EQ(pause.GetCycle(), 0u);
}

// ---- kinds and their fields

struct KindRow {
  const char* name;
  std::uint32_t code;
  std::uint32_t cycle_ms;
  bool isMessage;
};
constexpr KindRow kKindRows[] = {
    {"PDO", 2, 50, true},    {"SDO", 1, 4000, true},    {"NMT", 4, 1000, true},  {"SYNC", 5, 150, true},
    {"EMCY", 3, 3000, true}, {"HBEAT", 6, 100, true},   {"GUARD", 7, 100, true}, {"RTR", 8, 500, true},
    {"PAUSE", 9, 0, false},  {"CYCLETX", 16, 0, false},
};

TEST(ItemKinds, AreFoundByNameAndCode) {
  ASSERT_EQ(ItemKinds().size(), std::size(kKindRows));
  for (const KindRow& row : kKindRows) {
    const ItemKind* kind = FindItemKind(row.name);
    ASSERT_NE(kind, nullptr) << row.name;
    EXPECT_EQ(FindItemKind(row.code), kind);
    const auto item = kind->make(nullptr);
    EXPECT_STREQ(item->GetTypeName(), row.name);
    EXPECT_EQ(item->GetTypeCode(), row.code);
    EXPECT_EQ(item->GetCycle(), row.cycle_ms);
    EXPECT_EQ(item->GetDelay(), 0u);
    EXPECT_EQ(item->GetEnabled(), 1u);
    EXPECT_EQ(kind->isMessage, row.isMessage);
  }
  for (const char* name : {"", "pdo", "PDO ", "PDOX"}) EXPECT_EQ(FindItemKind(name), nullptr) << name;
  for (const std::uint32_t code : {0u, 10u, 17u}) EXPECT_EQ(FindItemKind(code), nullptr) << code;
}

TEST(ItemFields, AreConsistent) {
  for (const ItemKind& kind : ItemKinds()) {
    std::set<std::string> keys;
    const auto item = kind.make(nullptr);
    for (const ItemField& field : kind.fields) {
      SCOPED_TRACE(testing::Message() << kind.name << " " << field.key);
      EXPECT_TRUE(keys.insert(field.key).second);
      if (field.encoding == Encoding::Text) continue;
      EXPECT_LE(field.entry.minimum, field.number(*item));
      EXPECT_GE(field.entry.maximum, field.number(*item));
    }
  }
}

// Setting one field must change that field alone, up to its largest value.
TEST(ItemFields, DoNotOverlap) {
  for (const ItemKind& kind : ItemKinds()) {
    for (const ItemField& changed : kind.fields) {
      SCOPED_TRACE(testing::Message() << kind.name << " " << changed.key);
      const auto item = kind.make(nullptr);
      const auto untouched = kind.make(nullptr);
      if (changed.encoding == Encoding::Text) {
        changed.setText(*item, "uint:1");
        EXPECT_EQ(changed.text(*item), "uint:1");
      } else {
        const std::uint32_t value = changed.entry.maximum - (changed.number(*item) == changed.entry.maximum);
        EXPECT_TRUE(changed.setNumber(*item, value));
        EXPECT_EQ(changed.number(*item), value);
      }
      for (const ItemField& other : kind.fields) {
        if (other.key == changed.key || other.encoding == Encoding::Text) continue;
        EXPECT_EQ(other.number(*item), other.number(*untouched)) << other.key;
      }
    }
  }
}

TEST(ItemFields, RefuseWhatTheyCannotHold) {
  const auto refuses = [](const char* kind, const char* key, std::uint32_t value) {
    const auto item = FindItemKind(kind)->make(nullptr);
    const ItemField* field = FindField(*FindItemKind(kind), key);
    const std::uint32_t before = field->number(*item);
    return !field->setNumber(*item, value) && field->number(*item) == before;
  };
  EXPECT_TRUE(refuses("NMT", "NodeID", 256));
  EXPECT_TRUE(refuses("EMCY", "ErrCode", 0x10000));
  EXPECT_TRUE(refuses("EMCY", "ManSpec5", 0x100));
  EXPECT_TRUE(refuses("HBEAT", "NMTState", 256));
  EXPECT_FALSE(refuses("PDO", "COBID", 0xFFFFFFFF));
}

TEST(ItemFields, StateKeepsTheUpperByteOfItsWord) {
  StateRecord record;
  record.stateWord = 0xA500;
  SetState(record, 0xFF);
  EXPECT_EQ(record.stateWord, 0xA57F);
  SetToggle(record, true);
  SetState(record, 4);
  EXPECT_EQ(record.stateWord, 0xA584);
  SetToggle(record, false);
  EXPECT_EQ(record.stateWord, 0xA504);
}

// ---- making and copying

TEST(ItemForNode, DerivesItsCobIds) {
  const auto cobId = [](const char* kind, const char* key, std::uint32_t nodeId, std::uint32_t explicitId) {
    const auto item = FindItemKind(kind)->makeForNode(nullptr, nodeId, explicitId);
    EXPECT_EQ(FindField(KindOf(*item), "NodeID")->number(*item), nodeId);
    return FindField(KindOf(*item), key)->number(*item);
  };
  EXPECT_EQ(cobId("PDO", "COBID", 5, 0), 0x185u);
  EXPECT_EQ(cobId("PDO", "COBID", 5, 0x300), 0x300u);
  EXPECT_EQ(cobId("SDO", "COBIDTx", 5, 0), 0x605u);
  EXPECT_EQ(cobId("SDO", "COBIDRx", 5, 0), 0x585u);
  EXPECT_EQ(cobId("SDO", "COBIDTx", 5, 0x640), 0x640u);
  EXPECT_EQ(cobId("SDO", "COBIDRx", 5, 0x640), 0x585u);
  EXPECT_EQ(cobId("EMCY", "COBID", 5, 0x300), 0x85u);
  EXPECT_EQ(cobId("HBEAT", "COBID", 5, 0), 0x705u);
  EXPECT_EQ(cobId("GUARD", "COBID", 5, 0x20000705), 0x20000705u);
  EXPECT_EQ(cobId("RTR", "COBID", 5, 0), 0x705u);
  EXPECT_EQ(cobId("RTR", "COBID", 5, 0x300), 0x300u);
  EXPECT_EQ(cobId("NMT", "NMTState", 5, 0), 1u);
  for (const char* kind : {"SYNC", "PAUSE", "CYCLETX"}) EXPECT_EQ(FindItemKind(kind)->makeForNode, nullptr);
}

TEST(SdoItem, CobIdsFollowTheNodeOnlyWhenAutomatic) {
  ZSDOItemInfo item(nullptr);
  item.SetNodeId(127);
  EXPECT_EQ(item.record.cobIdTx, 0x67Fu);
  EXPECT_EQ(item.record.cobIdRx, 0x5FFu);
  item.SetNodeId(0);
  EXPECT_EQ(item.record.nodeId, 0u);
  EXPECT_EQ(item.record.cobIdTx, 0x67Fu);
  item.record.autoCanId = 0;
  item.SetNodeId(3);
  EXPECT_EQ(item.record.nodeId, 3u);
  EXPECT_EQ(item.record.cobIdRx, 0x5FFu);
}

TEST(ItemCopy, TakesTheWholeRecordOfTheSameKind) {
  const bool hexadecimal = true;
  ZPDOItemInfo original(&hexadecimal, 9);
  original.record.data = "string:x";
  original.record.reserved = 0xABCD;
  original.record.cycle_ms = 7;
  original.SetEnabled(0);
  const auto copy = CopyItem(original);
  EXPECT_EQ(copy->GetAttributesText(), "Node-ID 9, COBID 189, DLC 0, Data string:x");
  EXPECT_EQ(copy->GetCycle(), 7u);
  EXPECT_FALSE(copy->IsEnabled());
  EXPECT_EQ(dynamic_cast<ZPDOItemInfo&>(*copy).record.reserved, 0xABCDu);
}

TEST(ItemCopy, KeepsDefaultsWhenTheSourceIsOfAnotherKind) {
  const bool hexadecimal = true;
  ZGuardingItemInfo guard(&hexadecimal, 9);  // has the same record as a heartbeat and is none
  guard.SetEnabled(0);
  const ZMsgItemInfo& source = guard;
  const ZHBeatItemInfo heartbeat(source);
  EXPECT_EQ(heartbeat.GetAttributesText(), "Node-ID 1, COBID 701, State 7F");
  EXPECT_TRUE(heartbeat.IsEnabled());
}

// ---- editing

class FakeEditors final : public IItemEditors {
 public:
  bool Edit(ZMsgItemInfo& item, void* parentWindow, const EditContext* context) override {
    dynamic_cast<ZSyncItemInfo&>(item).record.cobId = 0x90;
    return parentWindow == this && context != nullptr && context->inCyclicList;
  }
};

TEST(ItemEdit, RunsTheRegisteredEditors) {
  ZSyncItemInfo item(nullptr);
  EXPECT_FALSE(item.Edit(nullptr, nullptr));
  FakeEditors editors;
  SetItemEditors(&editors);
  EditContext context;
  context.inCyclicList = true;
  EXPECT_TRUE(item.Edit(&editors, &context));
  EXPECT_EQ(item.record.cobId, 0x90u);
  SetItemEditors(nullptr);
  EXPECT_FALSE(item.Edit(&editors, &context));
}

}  // namespace
}  // namespace NCanopen
