#include <gmock/gmock.h>

#include <cmath>
#include <fstream>
#include <optional>

#include "host/runtime/library_objects.h"
#include "host/runtime/text.h"
#include "tests/test_folder.h"

namespace {

using namespace CODESCRLDR;
using NRuntime::ComPtr;
using NRuntime::ReceivedText;
using testing::ElementsAre;
using testing::HasSubstr;

template <class Object>
std::string Text(Object& object, HRESULT (STDMETHODCALLTYPE Object::*get)(wchar_t**)) {
  ReceivedText text;
  EXPECT_EQ((object.*get)(text.Out()), S_OK);
  return NRuntime::ToUtf8(text.Text());
}

template <class Number, class Object>
Number Get(Object& object, HRESULT (STDMETHODCALLTYPE Object::*get)(Number*)) {
  Number number{};
  EXPECT_EQ((object.*get)(&number), S_OK);
  return number;
}

using Value = ComPtr<ZCOObjectValue>;

Value ValueOf(ZCOObject& object,
              HRESULT (STDMETHODCALLTYPE ZCOObject::*get)(ZCOObjectValue**) = &ZCOObject::GetValue) {
  Value value;
  const HRESULT result = (object.*get)(value.Out());
  EXPECT_EQ(result, value ? S_OK : S_FALSE);
  return value;
}

std::optional<std::int64_t> Number(const Value& value) {
  std::int64_t number = 0;
  return value && SUCCEEDED(value->GetNumber(&number)) ? std::optional(number) : std::nullopt;
}

std::string Bytes(const Value& value) {
  std::uint8_t buffer[64];
  std::uint32_t size = 0;
  if (FAILED(value->GetBytes(sizeof buffer, buffer, &size))) return "none";
  std::string text;
  for (std::uint32_t i = 0; i < size; ++i) {
    char byte[4];
    std::snprintf(byte, sizeof byte, "%02x", buffer[i]);
    text += byte;
  }
  return text;
}

class Descriptions : public testing::Test {
 protected:
  std::uint32_t Load(const std::string& content) {
    std::ofstream(file, std::ios::binary) << content;
    return loader->Load(file.wstring().c_str());
  }

  // "LINE: text", without the name of the file.
  std::vector<std::string> Findings() {
    std::vector<std::string> all;
    const auto count = Get(*loader, &ZCODescrLdr::GetFindingCount);
    for (std::uint32_t i = 0; i < count; ++i) {
      ReceivedText text;
      EXPECT_EQ(loader->GetFinding(i, nullptr, nullptr, text.Out()), S_OK);
      const std::string line = NRuntime::ToUtf8(text.Text());
      EXPECT_EQ(line.find(NRuntime::PathText(file) + ':'), 0u) << line;
      all.push_back(line.substr(NRuntime::PathText(file).size() + 1));
    }
    return all;
  }

  ComPtr<ZCOObjectList> Objects() {
    ComPtr<ZCOObjectList> objects;
    EXPECT_EQ(loader->GetObjects(objects.Out()), S_OK);
    return objects;
  }

  ComPtr<ZCOObject> Find(std::uint16_t index, int subindex = -1) {
    ComPtr<ZCOObject> object, sub;
    ComPtr<ZCOObjectList> subs;
    EXPECT_EQ(Objects()->Find(index, object.Out()), S_OK) << std::hex << index;
    if (!object || subindex < 0) return object;
    EXPECT_EQ(object->GetSubObjects(subs.Out()), S_OK);
    EXPECT_EQ(subs->Find(static_cast<std::uint16_t>(subindex), sub.Out()), S_OK) << subindex;
    return sub;
  }

  const NTest::TestFolder folder;
  const std::filesystem::path file = folder / "it.eds";
  const ComPtr<ZCODescrLdr> loader = NRuntime::MakeDescriptionLoader(OSTREL_PROGRAMS);
};

std::string Variable(const std::string& index, const std::string& type, const std::string& more,
                     const std::string& access = "rw") {
  return "[" + index + "]\nParameterName=" + index + "\nDataType=" + type + "\nAccessType=" + access + "\n" +
         more + "\n";
}

std::string List(const std::string& indices) {
  std::string list, entry;
  int count = 0;
  for (const char c : indices + ' ') {
    if (c != ' ') {
      entry += c;
      continue;
    }
    list += std::to_string(++count) + "=0x" + entry + "\n";
    entry.clear();
  }
  return "[OptionalObjects]\nSupportedObjects=" + std::to_string(count) + "\n" + list;
}

// As tools write it: Windows-1252, CRLF, any case, comments, a configured device.
constexpr char kDcf[] =
    "; made by a tool\r\n[FileInfo]\r\nFileName=pump.dcf ; the file\r\n[DeviceInfo]\r\nVendorName=\"K\xFChl "
    "AG\"\r\n"
    "ProductName=Pump #1 # not more\r\nbaudrate_125=1\r\n"
    "[DeviceCommissioning]\r\nNodeID=0x0A\r\nBaudrate=500\r\n"
    "[DummyUsage]\r\nDummy0005=1\r\n[Comments]\r\nLines=0\r\n"
    "[MANDATORYOBJECTS]\r\nSupportedObjects=0x3\r\n1=0x1000\r\n2=4097\r\n3=0x1018\r\n"
    "[OptionalObjects]\r\nSupportedObjects=2\r\n1=0x1a00\r\n2=0x1800\r\n[ManufacturerObjects]"
    "\r\nSupportedObjects=0\r\n"
    "[1000]\r\nParameterName=Device type\r\nObjectType=0x7\r\nDataType=0x0007\r\nAccessType=RO\r\n"
    "DefaultValue=0x00030191\r\nPDOMapping=\r\n"
    "[1001]\r\nParameterName=Error "
    "register\r\nDataType=5\r\nAccessType=ro\r\nDefaultValue=\r\nPDOMapping=1\r\n"
    "[1018]\r\nParameterName=Identity\r\nObjectType=9\r\nSubNumber=0x2\r\n"
    "[1018sub0]\r\nParameterName=Count\r\nDataType=5\r\nAccessType=const\r\nDefaultValue=1\r\n"
    "[1018Sub01]\r\nParameterName=Vendor-ID\r\nDenotation=Who made it\r\nDataType=7\r\nAccessType=ro\r\n"
    "DefaultValue=017\r\nParameterValue=0x360\r\nObjFlags=0x3\r\n"
    "[1800]\r\nParameterName=TPDO\r\nObjectType=0x9\r\nSubNumber=2\r\n"
    "[1800sub0]\r\nParameterName=Count\r\nDataType=5\r\nAccessType=ro\r\nDefaultValue=1\r\n"
    "[1800sub1]\r\nParameterName=COB-ID\r\nDataType=7\r\nAccessType=rw\r\nDefaultValue= $nodeid + 0x180 \r\n"
    "[1A00]\r\nParameterName=Mapping\r\nObjectType=8\r\nDataType=7\r\nAccessType=rw\r\nCompactSubObj=3\r\n"
    "DefaultValue=0\r\n[1A00Name]\r\nNrOfEntries=1\r\n2=Second\r\n[1A00Value]\r\nNrOfEntries=1\r\n0x1="
    "0x20000008\r\n";

TEST_F(Descriptions, OfRealToolsAreReadWithoutAWord) {
  EXPECT_EQ(Load(kDcf), kLoaded);
  EXPECT_THAT(Findings(), ElementsAre());
  EXPECT_EQ(Get(*loader, &ZCODescrLdr::GetNodeId), 10u);
  EXPECT_EQ(Get(*loader, &ZCODescrLdr::GetBitRate), 500000u);
  const struct {
    const wchar_t *section, *key;
    const char* text;
  } information[] = {{L"DeviceInfo", L"vendorname", "Kühl AG"},
                     {L"DeviceInfo", L"ProductName", "Pump #1"},
                     {L"FileInfo", L"FileName", "pump.dcf"},
                     {L"DeviceComissioning", L"NodeID", "0x0A"}};
  for (const auto& row : information) {
    ReceivedText text;
    EXPECT_EQ(loader->GetInformation(row.section, row.key, text.Out()), S_OK);
    EXPECT_EQ(NRuntime::ToUtf8(text.Text()), row.text);
  }
  ReceivedText none;
  EXPECT_EQ(loader->GetInformation(L"DeviceInfo", L"OrderCode", none.Out()), S_FALSE);

  std::vector<int> indices;
  ComPtr<ZCOObjectListIter> iterator;
  ASSERT_EQ(Objects()->GetIterator(iterator.Out()), S_OK);
  for (ComPtr<ZCOObject> object; iterator->Next(object.Out()) == S_OK;) {
    std::uint16_t index = 0;
    EXPECT_EQ(object->GetIndex(&index, nullptr), S_OK);
    indices.push_back(index);
  }
  EXPECT_THAT(indices, ElementsAre(0x1000, 0x1001, 0x1018, 0x1800, 0x1A00));

  const auto vendor = Find(0x1018, 1), identifier = Find(0x1800, 1);
  EXPECT_EQ(Text(*vendor, &ZCOObject::GetName), "Who made it");
  EXPECT_EQ(Number(ValueOf(*vendor)), 0x360);
  EXPECT_EQ(Number(ValueOf(*vendor, &ZCOObject::GetDefaultValue)), 15);
  EXPECT_EQ(Get(*vendor, &ZCOObject::GetObjectFlags), 3u);
  EXPECT_EQ(Get(*vendor, &ZCOObject::IsReadOnly), 1u);
  const Value value = ValueOf(*identifier);
  EXPECT_EQ(Number(value), 0x18A);
  EXPECT_EQ(Text(*value, &ZCOObjectValue::GetText), "0x18A");
  EXPECT_EQ(Text(*value, &ZCOObjectValue::GetSourceText), "$nodeid + 0x180");
  EXPECT_FALSE(ValueOf(*Find(0x1001)));
  EXPECT_EQ(Get(*Find(0x1001), &ZCOObject::IsMappable), 1u);

  EXPECT_EQ(Number(ValueOf(*Find(0x1A00, 0))), 3);
  EXPECT_EQ(Get(*Find(0x1A00, 0), &ZCOObject::GetAccessType), kReadWrite);
  EXPECT_EQ(Number(ValueOf(*Find(0x1A00, 1))), 0x20000008);
  EXPECT_EQ(Number(ValueOf(*Find(0x1A00, 3))), 0);
  EXPECT_EQ(Text(*Find(0x1A00, 2), &ZCOObject::GetName), "Second");
}

TEST_F(Descriptions, TheNodeIdOfTheHostGoesBeforeThatOfTheFile) {
  const std::string eds = List("1014") + Variable("1014", "7", "DefaultValue=0x80+$NODEID");
  EXPECT_EQ(Load(eds), kLoaded);
  Value value = ValueOf(*Find(0x1014));
  EXPECT_EQ(Number(value), std::nullopt);
  EXPECT_EQ(Bytes(value), "none");
  EXPECT_EQ(Text(*value, &ZCOObjectValue::GetText), "0x80+$NODEID");
  EXPECT_EQ(loader->SetNodeId(128), E_INVALIDARG);
  EXPECT_EQ(loader->SetNodeId(5), S_OK);
  for (const std::string& text : {eds, "[DeviceComissioning]\nNodeID=7\n" + eds}) {
    EXPECT_EQ(Load(text), kLoaded);
    EXPECT_EQ(Number(ValueOf(*Find(0x1014))), 0x85);
  }
  EXPECT_EQ(Number(value), std::nullopt);  // it is of the load before
}

TEST_F(Descriptions, ValuesByType) {
  const struct {
    const char *type, *text;
    std::optional<std::int64_t> number;
    const char* bytes;
  } cases[] = {
      {"1", "1", 1, "01"},
      {"2", "-128", -128, "80"},
      {"3", "0xFFFE", -2, "feff"},  // limits above all are given so
      {"4", "-0x1", -1, "ffffffff"},
      {"5", "010", 8, "08"},
      {"7", "4294967295", 4294967295, "ffffffff"},
      {"0x10", "0x800000", -8388608, "000080"},
      {"0x15", "0x8000000000000000", INT64_MIN, "0000000000000080"},
      {"0x1B", "0xFFFFFFFFFFFFFFFF", {}, "ffffffffffffffff"},
      {"8", "0x3F800000", {}, "0000803f"},
      {"8", "-1.5", {}, "0000c0bf"},
      {"0x11", "1e3", {}, "0000000000408f40"},
      {"9", "0x12", {}, "30783132"},
      {"9", "\"quoted\"", {}, "71756f746564"},
      {"0xA", "0A 0b0C", {}, "0a0b0c"},
      {"0xB", "\xC3\xA4", {}, "e400"},
      {"0xF", "FF00", {}, "ff00"},
      {"0xC", "0x010203040506", 0x010203040506, "060504030201"},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(std::string(row.type) + " " + row.text);
    EXPECT_EQ(Load(List("2000") + Variable("2000", row.type, std::string("DefaultValue=") + row.text)),
              kLoaded);
    const Value value = ValueOf(*Find(0x2000));
    EXPECT_EQ(Number(value), row.number);
    EXPECT_EQ(Bytes(value), row.bytes);
  }
}

TEST_F(Descriptions, AccessTypesAndSizes) {
  const struct {
    const char *access, *type;
    AccessType code;
    std::uint32_t readOnly, size;
  } cases[] = {{"rw", "7", kReadWrite, 0, 4},        {"WO", "0x1b", kWriteOnly, 0, 8},
               {"ro", "9", kReadOnly, 1, 0},         {"Const", "0x16", kConst, 1, 3},
               {"rwr", "10", kReadWriteInput, 0, 0}, {"rww", "0x0F", kReadWriteOutput, 0, 0}};
  for (const auto& row : cases) {
    Load(List("2000") + Variable("2000", row.type, "", row.access));
    const auto object = Find(0x2000);
    EXPECT_EQ(Get(*object, &ZCOObject::GetAccessType), row.code) << row.access;
    EXPECT_EQ(Get(*object, &ZCOObject::IsReadOnly), row.readOnly) << row.access;
    EXPECT_EQ(Get(*object, &ZCOObject::GetSize), row.size) << row.access;
  }
}

TEST_F(Descriptions, WhatIsWrongIsSaidWithWhatWasAssumed) {
  const std::string object = Variable("2000", "5", "");
  const std::string listed = List("2000") + object;  // eight lines
  const struct {
    std::string text;
    std::uint32_t code;
    const char* finding;
  } cases[] = {
      {"[DeviceInfo]\nno value\n" + listed, kWarnSyntax,
       "2: KEY=VALUE is expected, not \"no value\"; the line is skipped"},
      {"x=1\n" + listed, kWarnSyntax, "1: a line before the first section; it is skipped"},
      {"[DeviceInfo\n" + listed, kWarnSyntax,
       "1: \"]\" is missing; the rest of the line is taken for the name of a section"},
      {List("2000 2001") + object, kWarnMissingSection, "4: [2001] is missing; the object is left out"},
      {listed + "[2001sub0]\nParameterName=a\nDataType=5\nAccessType=ro\n", kWarnMissingSection,
       "9: [2001] is missing; a record without a name is assumed for its sub-objects"},
      {listed + Variable("2001", "5", ""), kWarnUnlisted, "9: no list names the object 2001; it is taken"},
      {"[ManufacturerObjects]\nSupportedObjects=2\n1=0x2000\n" + object, kWarnWrongCount,
       "2: SupportedObjects is 2, the list has 1; all of them are taken"},
      {listed + "SubNumber=3\n", kWarnWrongCount,
       "9: SubNumber of 2000 is 3, 0 sub-objects are described; those are taken"},
      {List("2000") + Variable("2000", "0x1C", ""), kWarnUnknownType,
       "6: data type 0x1C is unknown; the size of the value is taken for 0"},
      {List("2000") + Variable("2000", "5", "", "rx"), kWarnUnknownType,
       "7: AccessType=rx: rw, ro, wo, const, rwr or rww is expected; rw is assumed"},
      {List("2000") + "[2000]\nParameterName=a\nAccessType=ro\n", kWarnMissingKey,
       "4: [2000] has no DataType; the size of the value is taken for 0"},
      {listed + "DefaultValue=0x1G", kWarnBadNumber,
       "9: DefaultValue=0x1G is no number; the value cannot be used"},
      {listed + "HighLimit=256", kWarnBadNumber,
       "9: HighLimit=256 does not fit UNSIGNED8; it is taken for 0x0"},
      {listed + "DefaultValue=09", kWarnBadNumber,
       "9: 09 begins with 0 but is not octal; it is taken for decimal"},
      {listed + "pdomapping=0\nPDOMapping=1", kWarnDuplicate,
       "10: \"PDOMapping\" stands in [2000] already; this line is skipped"},
      {listed + object, kWarnDuplicate, "9: [2000] stands in line 4 already; this one is skipped"},
      {listed + Variable("A00", "5", "") + Variable("0A00", "5", ""), kWarnDuplicate,
       "14: [0A00] is the same as [A00] in line 9; this one is skipped"},
      {listed + "[M1ModuleInfo]\nProductName=x\n[M2ModuleInfo]\n", kWarnSkipped,
       "9: modules are not read; the device is taken without them"},
      {"[DeviceComissioning]\nNodeID=200\n" + listed, kWarnBadNumber,
       "2: NodeID=200 is not from 1 to 127; the device is taken for one without a node-ID"},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.finding);
    EXPECT_EQ(Load(row.text), row.code);
    EXPECT_THAT(Findings(), ElementsAre(row.finding));
    EXPECT_TRUE(Find(0x2000));
  }
}

TEST_F(Descriptions, FindingsAreInTheOrderOfTheLinesAndLimited) {
  std::string text = List("2000") + Variable("2000", "5", "");
  for (int i = 0; i < 1500; ++i) text += "x\n";
  EXPECT_EQ(Load("\n[2001\n" + text), kWarnSyntax);
  const auto findings = Findings();
  EXPECT_EQ(findings.size(), 1001u);
  EXPECT_THAT(findings.back(), HasSubstr("only 1000 findings are kept"));
  EXPECT_THAT(findings.front(), HasSubstr("2: \"]\" is missing"));
}

TEST_F(Descriptions, PdosThatAFileOnlyCounts) {
  EXPECT_EQ(
      Load("[DeviceInfo]\nCompactPDO=0x3\nNrOfRXPDO=2\nNrOfTxPDO=0\n" + List("1401") +
           "[1401]\nParameterName=own\nObjectType=9\nSubNumber=1\n[1401sub0]\nParameterName=n\nDataType=5\n"
           "AccessType=ro\n"),
      kLoaded);
  EXPECT_EQ(Get(*Objects(), &ZCOObjectList::GetCount), 3u);
  EXPECT_EQ(Text(*ValueOf(*Find(0x1400, 1)), &ZCOObjectValue::GetSourceText), "$NODEID+512");
  EXPECT_EQ(Number(ValueOf(*Find(0x1400, 0))), 2);
  EXPECT_EQ(Number(ValueOf(*Find(0x1600, 0))), 0);
  EXPECT_EQ(Text(*Find(0x1401), &ZCOObject::GetName), "own");
}

TEST_F(Descriptions, FilesThatAreNoneLeaveNothing) {
  EXPECT_EQ(Load(kDcf), kLoaded);
  EXPECT_EQ(Load("{\"json\": true}"), kNotADescription);
  EXPECT_EQ(Get(*Objects(), &ZCOObjectList::GetCount), 0u);
  EXPECT_THAT(Findings(),
              ElementsAre(" not a device description: it has neither objects nor a list of objects"));
  EXPECT_EQ(loader->Load((folder / "none.eds").wstring().c_str()), kFileMissing);
  EXPECT_EQ(loader->Load(folder.Path().wstring().c_str()), kFileUnreadable);
  std::filesystem::resize_file(file, (64u << 20) + 1);
  EXPECT_EQ(loader->Load(file.wstring().c_str()), kFileTooLarge);
}

}  // namespace
