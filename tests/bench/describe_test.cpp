#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "tests/bench/program.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::StrEq;

class Describe : public testing::Test {
 protected:
  NTest::Outcome Run(const std::string& content, const std::string& options) {
    NTest::WriteFile(file, content);
    return NTest::RunBench("describe " + NTest::Quoted(file) + options);
  }

  // Warnings without the folder.
  std::string Errors(const NTest::Outcome& outcome) {
    std::string text = outcome.errors;
    const std::u8string name = (folder / "").u8string();
    const std::string prefix(name.begin(), name.end());
    for (auto at = text.find(prefix); at != std::string::npos; at = text.find(prefix)) {
      text.erase(at, prefix.size());
    }
    return text;
  }

  const NTest::TestFolder folder;
  const std::filesystem::path file = folder / "pump.eds";
};

// A name that would clear a screen among them.
const std::string kPump =
    "[DeviceInfo]\r\nVendorName=K\xFChl\r\nProductName=Pump\r\n[DeviceComissioning]\r\nBaudrate=250\r\n"
    "[MandatoryObjects]\r\nSupportedObjects=2\r\n1=0x1014\r\n2=0x1018\r\n3=0x2000\r\n4=0x2001\r\n"
    "[1014]\r\nParameterName=COB-ID EMCY\r\nDataType=7\r\nAccessType=rw\r\nDefaultValue=$NODEID+0x80\r\n"
    "[1018]\r\nParameterName=Identity\r\nObjectType=9\r\nSubNumber=2\r\n"
    "[1018sub0]\r\nParameterName=Entries\r\nDataType=5\r\nAccessType=const\r\nDefaultValue=1\r\n"
    "[1018sub1]\r\nParameterName=Vendor-ID\r\nDataType=7\r\nAccessType=ro\r\nDefaultValue=1\r\n"
    "ParameterValue=0x360\r\n"
    "[2000]\r\nParameterName=Speed\x1B[2J\r\nDataType=3\r\nAccessType=rww\r\nPDOMapping=1\r\nLowLimit=-5\r\n"
    "HighLimit=0x64\r\nDefaultValue=0xFFFF\r\n";

TEST_F(Describe, PrintsTheObjectsAndWarnsLikeACompiler) {
  const auto outcome = Run(kPump, "");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.output, StrEq(R"(Vendor    Kühl
Product   Pump
Bit rate  250 kbit/s

Index  Sub  Name         Type        Access  PDO  Range     Value
1014        COB-ID EMCY  UNSIGNED32  rw                     $NODEID+0x80
1018        Identity     RECORD
1018   00     Entries    UNSIGNED8   const                  1
1018   01     Vendor-ID  UNSIGNED32  ro                     0x360
2000        Speed?[2J    INTEGER16   rww     P    -5..0x64  0xFFFF
3 objects, 4 values, 2 warnings
)"));
  EXPECT_THAT(Errors(outcome),
              StrEq("pump.eds:7: SupportedObjects is 2, the list has 4; all of them are taken\n"
                    "pump.eds:11: [2001] is missing; the object is left out\n"));
  EXPECT_THAT(Run(kPump, "--node 5").output,
              testing::AllOf(HasSubstr("Node-ID   5\n"), HasSubstr(" 0x85\n")));
}

TEST_F(Describe, JsonHasEverything) {
  const auto outcome = Run(kPump, "--node 5 --json");
  EXPECT_EQ(outcome.errors, "");
  const json document = json::parse(outcome.output);
  EXPECT_EQ(document["nodeId"], 5);
  EXPECT_EQ(document["bitRate"], 250000);
  EXPECT_EQ(document["warnings"][1]["line"], 11);
  EXPECT_EQ(document["warnings"][1]["code"], 0x1002);
  EXPECT_EQ(document["objects"][0]["number"], 0x85);
  EXPECT_EQ(document["objects"][1]["subObjects"][1], json::parse(R"({"index":4120,"subindex":1,
      "name":"Vendor-ID","objectType":7,"dataType":7,"type":"UNSIGNED32","access":"ro","mappable":false,
      "value":"0x360","number":864,"low":null,"high":null})"));
  EXPECT_EQ(document["objects"][2]["number"], -1);
  EXPECT_EQ(document["objects"][2]["mappable"], true);
}

TEST_F(Describe, WhatCannotBeUsedIsOneLine) {
  const struct {
    std::string content, options, named;
  } cases[] = {{"no description", "", "pump.eds: not a device description"},
               {kPump, "--node 128", "--node 128: a node-ID from 1 to 127 is wanted"},
               {kPump, "more.eds", "more.eds"}};
  for (const auto& row : cases) {
    const auto outcome = Run(row.content, row.options);
    EXPECT_EQ(outcome.status, 2) << row.named;
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, HasSubstr(row.named));
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << outcome.errors;
  }
  EXPECT_THAT(NTest::RunBench("describe none.eds").errors, HasSubstr("none.eds: no such file"));
}

TEST_F(Describe, ASimulatedDeviceIsWhatItsFileSays) {
  NTest::WriteFile(file, kPump);
  const std::filesystem::path sequence = folder / "it.seq";
  NTest::WriteFile(
      sequence,
      "<CANopenIG><Sequence><SDO NodeID=\"9\" COBIDTx=\"0x609\" COBIDRx=\"0x589\" Upload=\"1\" "
      "AutoCANID=\"1\" Index=\"0x1014\" SubIndex=\"0x0\" Enabled=\"1\"/></Sequence></CANopenIG>");
  // The word as a whole: a path of Windows has a colon of its own.
  const auto outcome =
      NTest::RunBench("play " + NTest::Quoted(sequence) + "--json --device 9:" + NTest::Quoted(file));
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(json::parse(outcome.output)["transfers"][0]["data"], "89000000");
}

}  // namespace
