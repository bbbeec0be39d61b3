#include "editors/item_form.h"

#include <gtest/gtest.h>

#include "canopen/fields.h"
#include "canopen/flow_items.h"
#include "canopen/item_kinds.h"
#include "canopen/message_items.h"

namespace {

using NEditors::FormContext;
using NEditors::ItemForm;

std::unique_ptr<NCanopen::ZMsgItemInfo> MakeItem(const char* kind) {
  return NCanopen::FindItemKind(kind)->make(nullptr);
}

NSdo::DatabaseNode Drive() {
  NSdo::DatabaseNode node{L"Drive", 5, {}, {}, {{0x40000285, 1}, {0x80001385, 2}}};
  node.objects = {{0x1000, 0, 4, false, false, L"(ReadOnly) Device type", L"0x20192"},
                  {0x1008, 0, 0, true, false, L"(Const) Device name", L"Drive"},
                  {0x1201, 1, 4, false, false, L"Client to server", L"0x645"},
                  {0x1201, 2, 4, false, false, L"Server to client", L"0x5C5"},
                  {0x1A01, 0, 1, false, true, L"Mapped objects", L"2"},
                  {0x1A01, 1, 4, false, true, L"First", L"0x60410010"},
                  {0x1A01, 2, 4, false, true, L"Second", L"0x60640020"},
                  {0x6040, 0, 2, false, true, L"(ReadWrite) Controlword", L""},
                  {0x6041, 0, 0, false, true, L"Of an unknown type", L""}};
  return node;
}

void Type(ItemForm& form, const char* key, const char* text) { form.SetText(*form.Find(key), text); }
std::string Text(const ItemForm& form, const char* key) { return form.Field(*form.Find(key)).text; }

std::vector<std::string> Choices(const ItemForm& form, const char* key) {
  std::vector<std::string> texts;
  for (const auto& choice : form.ChoicesOf(*form.Find(key))) texts.push_back(choice.text);
  return texts;
}

TEST(ItemForm, EveryFieldKnowsItsBounds) {
  const struct {
    const char* kind;
    const char* key;
    bool hexadecimal;
    const char* text;
    const wchar_t* message;  // null: passes
  } rows[] = {
      {"EMCY", "NodeID", false, "0", L"Please enter a value in the range from 1 to 127\n"},
      {"HBEAT", "NodeID", true, "128", L"Please enter a value in the range from 1 to 127\n"},
      {"GUARD", "NodeID", false, "0", L"Please enter a value in the range from 1 to 127\n"},
      {"PDO", "NodeID", false, "0", L"Please enter a value in the range from 1 to 127\n"},
      {"NMT", "NodeID", false, "0 (All nodes)", nullptr},
      {"NMT", "NodeID", false, "128", L"Please enter a value in the range from 0 to 127\n"},
      {"SDO", "NodeID", false, "0", nullptr},
      {"PDO", "NodeID", true, "5 (Drive)", nullptr},
      {"PDO", "NodeID", false, " 5", L"Invalid syntax or value range"},
      {"HBEAT", "COBID", false, "800", L"Please enter a value less or equal than 7FF (hex.)\n"},
      {"EMCY", "COBID", false, "800x", nullptr},
      {"EMCY", "COBID", false, "800",
       L"Please enter a value less than or equal to 7FF (hex.)\nUse the trailing \"x\" to specify extended "
       L"CAN-ID "
       L"(e.g. 800x)"},
      {"EMCY", "ErrCode", true, "FFFF", nullptr},
      {"EMCY", "ErrCode", false, "65536", L"Invalid syntax or value range"},
      {"EMCY", "Errreg", false, "256", L"Please enter a value less or equal than 255\n"},
      {"EMCY", "ManSpec5", true, "100", L"Please enter a value less or equal than FF (hex.)\n"},
      {"HBEAT", "NMTState", true, "80", L"Please enter a value in the range from 0 to 7F (hex.)\n"},
      {"GUARD", "NMTState", false, "127 (Pre-operational)", nullptr},
      {"NMT", "NMTState", false, "256", L"Please enter a value in the range from 0 to 255\n"},
      {"PDO", "DLC", false, "9", L"Please enter a value in the range from 0 to 8\n"},
      {"RTR", "DLC", true, "9", L"Please enter a value in the range from 0 to 8\n"},
      {"PDO", "Data", false, "bytearr:1G", L"Invalid syntax or value range"},
      {"PDO", "Data", false, "uint:1", nullptr},
      {"SDO", "Index", false, "FFF", L"Please enter a value in the range from 1000 to FFFF (hex.)\n"},
      {"SDO", "Index", false, "10000", L"Please enter a value in the range from 1000 to FFFF (hex.)\n"},
      {"SDO", "SubIndex", true, "FF", nullptr},
      {"SDO", "ObjectSize", false, "4294967295", nullptr},
      {"SDO", "SendCycle", false, "-", L"Please enter a value less or equal than 4294967295\n"},
      {"SYNC", "SendDelay", false, "4294967296", L"Please enter a value less or equal than 4294967295\n"},
      {"PAUSE", "PauseMilliSec", false, "0", L"Please enter a value in the range from 1 to 2000000\n"},
      {"PAUSE", "PauseMilliSec", false, "2000001", L"Please enter a value in the range from 1 to 2000000\n"},
      {"PAUSE", "PauseMilliSec", false, "2000000", nullptr},
  };
  for (const auto& row : rows) {
    const auto item = MakeItem(row.kind);
    const auto before = NCanopen::CopyItem(*item);
    ItemForm form(*item, {.hexadecimal = row.hexadecimal, .inCyclicList = true});
    EXPECT_FALSE(form.Check()) << row.kind << ": a new item is no fault";
    // What the data's length needs is no matter here.
    if (std::string(row.key) == "ObjectSize") form.SetChecked(*form.Find("Upload"), true);
    Type(form, row.key, row.text);
    const auto fault = form.Store(*item);
    ASSERT_EQ(fault.has_value(), row.message != nullptr) << row.kind << " " << row.key << " " << row.text;
    if (!fault) continue;
    EXPECT_EQ(fault->field, *form.Find(row.key));
    EXPECT_EQ(fault->message, row.message) << row.kind << " " << row.key;
    EXPECT_EQ(item->GetAttributesText(), before->GetAttributesText()) << "nothing is stored";
  }
}

TEST(ItemForm, ShowsAndStoresWhatIsEntered) {
  NCanopen::ZEmcyItemInfo item(nullptr);
  item.record.cobId = 0x20000800;
  item.record.errorCode = 0x8130;
  ItemForm form(item, {.hexadecimal = true});
  EXPECT_EQ(Text(form, "COBID"), "800x");
  EXPECT_EQ(Text(form, "ErrCode"), "8130");
  EXPECT_EQ(Text(form, "SendCycle"), "-");
  EXPECT_EQ(Text(form, "SendDelay"), "0");
  EXPECT_FALSE(form.Field(*form.Find("SendCycle")).enabled);
  Type(form, "NodeID", "12 (Valve)");
  Type(form, "Errreg", "81");
  Type(form, "ManSpec2", "ff");
  ASSERT_FALSE(form.Store(item));
  EXPECT_EQ(item.record.nodeId, 12u);
  EXPECT_EQ(item.record.cobId, 0x20000800u) << "it does not follow the node";
  EXPECT_EQ(item.record.errorRegister, 0x81);
  EXPECT_EQ(item.record.manufacturer[1], 0xFF);
  EXPECT_EQ(item.record.cycle_ms, 3000u) << "outside the cyclic list it keeps its times";

  NCanopen::ZGuardingItemInfo guard(nullptr);
  ItemForm guardForm(guard, {.inCyclicList = true});
  Type(guardForm, "NMTState", "5");
  Type(guardForm, "SendCycle", "70");
  guardForm.SetChecked(*guardForm.Find("ToggleBitStartValue"), true);
  ASSERT_FALSE(guardForm.Store(guard));
  EXPECT_EQ(StateByte(guard.record), 0x85);
  EXPECT_EQ(guard.record.cycle_ms, 70u);

  NCanopen::ZCycSendStateItemInfo state(nullptr);
  ItemForm stateForm(state, {});
  stateForm.SetChecked(0, false);
  ASSERT_FALSE(stateForm.Store(state));
  EXPECT_EQ(state.record.start, 0u);
}

TEST(ItemForm, IdentifiersOfAnSdoFollowItsNode) {
  NCanopen::ZSDOItemInfo item(nullptr);
  ItemForm form(item, {});
  const auto tx = *form.Find("COBIDTx");
  Type(form, "NodeID", "10");
  EXPECT_EQ(Text(form, "COBIDTx"), "60A");
  EXPECT_EQ(Text(form, "COBIDRx"), "58A");
  EXPECT_TRUE(form.Field(tx).readOnly);
  Type(form, "NodeID", "0");
  EXPECT_EQ(Text(form, "COBIDTx"), "60A");
  EXPECT_FALSE(form.Field(tx).readOnly);
  form.SetChecked(*form.Find("AutoCANID"), false);
  Type(form, "NodeID", "11");
  EXPECT_EQ(Text(form, "COBIDRx"), "58A");
  form.SetChecked(*form.Find("AutoCANID"), true);
  EXPECT_EQ(Text(form, "COBIDRx"), "58B");
}

TEST(ItemForm, TheLengthFollowsTheData) {
  NCanopen::ZPDOItemInfo item(nullptr);
  ItemForm form(item, {});
  form.SetChecked(*form.Find("AutoSize"), true);
  EXPECT_TRUE(form.Field(*form.Find("DLC")).readOnly);
  Type(form, "Data", "uint:0x10000");
  EXPECT_EQ(Text(form, "DLC"), "3");
  Type(form, "Data", "123");  // without a type: a byte array
  EXPECT_EQ(Text(form, "DLC"), "2");
  Type(form, "Data", "uint:x");
  EXPECT_EQ(Text(form, "DLC"), "N/A");
  EXPECT_EQ(form.Check()->field, *form.Find("Data"));
  form.SetDefinition({"uint:7", 4, true});
  EXPECT_EQ(Text(form, "DLC"), "4");
  ASSERT_FALSE(form.Store(item));
  EXPECT_EQ(item.record.data, "uint:7");
  EXPECT_EQ(item.record.dlc, 4u);
  EXPECT_EQ(item.record.autoSize, 1u);
}

TEST(ItemForm, OffersWhatNodesAndVocabularyHave) {
  const FormContext context{.hexadecimal = true, .nodes = {Drive()}};
  const auto pdo = MakeItem("PDO");
  ItemForm form(*pdo, context);
  EXPECT_EQ(Choices(form, "NodeID"), std::vector<std::string>{"5 (Drive)"});
  Type(form, "NodeID", "5 (Drive)");
  EXPECT_EQ(Choices(form, "COBID"),
            (std::vector<std::string>{"185 (Node 5 TPDO 0)", "285 (Node 5 TPDO 1)", "385 (Node 5 TPDO 2)",
                                      "485 (Node 5 TPDO 3)", "285 (N5_TPDO2)", "385 (N5_TPDO3)"}));
  Type(form, "COBID", "285 (N5_TPDO2)");
  EXPECT_EQ(form.Purpose().limit, 6u) << "16 and 32 bits are mapped";

  const auto nmt = MakeItem("NMT");
  ItemForm nmtForm(*nmt, context);
  EXPECT_EQ(Choices(nmtForm, "NodeID"), (std::vector<std::string>{"0 (All nodes)", "5 (Drive)"}));
  EXPECT_EQ(Choices(nmtForm, "NMTState")[2], "80 (Enter pre-operational)");

  const auto sdo = MakeItem("SDO");
  ItemForm sdoForm(*sdo, context);
  Type(sdoForm, "NodeID", "5");
  EXPECT_EQ(Choices(sdoForm, "COBIDTx"), (std::vector<std::string>{"605 (Default)", "645 (Server 2)"}));
  EXPECT_EQ(Choices(sdoForm, "COBIDRx"), (std::vector<std::string>{"585 (Default)", "5C5 (Server 2)"}));
  const auto index = *sdoForm.Find("Index");
  const auto objects = sdoForm.ChoicesOf(index);
  ASSERT_EQ(objects.size(), 9u);
  EXPECT_EQ(objects[7].text, "6040 sub 0 (ReadWrite) Controlword");
  sdoForm.Choose(index, objects[7]);
  EXPECT_EQ(Text(sdoForm, "Index"), "6040");
  EXPECT_EQ(Text(sdoForm, "ObjectSize"), "2");
  EXPECT_EQ(sdoForm.Purpose().limit, 2u);
  for (const std::size_t unknown : {1, 8}) {
    sdoForm.Choose(index, objects[unknown]);
    EXPECT_FALSE(sdoForm.Purpose().limit) << "a text, or what is of no known type, has no size to exceed";
  }
}

TEST(ItemForm, PreviewsTheFrame) {
  const auto data = [](const std::optional<NSdk::CanFrame>& frame) {
    return frame ? std::vector<unsigned>(frame->data, frame->data + 8) : std::vector<unsigned>{};
  };
  const auto pdo = MakeItem("PDO");
  ItemForm form(*pdo, {});
  Type(form, "Data", "uint:4660");
  Type(form, "DLC", "2");
  EXPECT_EQ(data(form.Preview()), (std::vector<unsigned>{0x34, 0x12, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(NEditors::FrameText(*form.Preview()), "181  [2]  34 12");
  Type(form, "DLC", "9");
  EXPECT_FALSE(form.Preview());

  const auto sdo = MakeItem("SDO");
  ItemForm sdoForm(*sdo, {});
  Type(sdoForm, "Index", "6040");
  Type(sdoForm, "Data", "uint:6");
  Type(sdoForm, "ObjectSize", "2");
  EXPECT_EQ(data(sdoForm.Preview()), (std::vector<unsigned>{0x2B, 0x40, 0x60, 0, 6, 0, 0, 0}));
  EXPECT_EQ(sdoForm.Preview()->identifier, 0x601u);
  sdoForm.SetChecked(*sdoForm.Find("BlockTransfer"), true);
  EXPECT_EQ(data(sdoForm.Preview())[0], 0xC6u);
  sdoForm.SetChecked(*sdoForm.Find("Upload"), true);
  EXPECT_EQ(data(sdoForm.Preview())[0] & 0xE0, 0xA0u);
  EXPECT_EQ(NEditors::FrameText(*ItemForm(*MakeItem("RTR"), {}).Preview()), "181  [0]  R");
  EXPECT_FALSE(ItemForm(*MakeItem("PAUSE"), {}).Preview());
}

}  // namespace
