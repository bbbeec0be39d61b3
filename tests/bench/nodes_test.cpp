#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "tests/bench/program.h"

namespace {

using nlohmann::json;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;

class Nodes : public testing::Test {
 protected:
  const NTest::TestFolder folder;
  const std::filesystem::path database = folder / "net.dbc";
};

TEST_F(Nodes, OfTheDemonstrationAreListedWithoutAWarning) {
  const std::string arguments = "nodes --db " + NTest::Quoted(OSTREL_SOURCE_DIR "/examples/plant/plant.dbc");
  const auto outcome = NTest::RunBench(arguments + "--json --can 3=virtual");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors, "");
  const json document = json::parse(outcome.output);
  ASSERT_EQ(document["channels"].size(), 1u);
  EXPECT_EQ(document["channels"][0],
            (json{{"channel", 3}, {"name", "CAN 3 (CANopen)"}, {"protocols", {"CANopen"}}}));
  ASSERT_EQ(document["nodes"].size(), 2u);
  const json& drive = document["nodes"][1];
  EXPECT_EQ(drive["id"], 9);
  EXPECT_EQ(drive["name"], "Spindle");
  EXPECT_THAT(drive["description"].get<std::string>(), EndsWith("spindle.dcf"));
  EXPECT_EQ(drive["tpdos"], json::parse(R"([{"cobId":393,"number":0},{"cobId":649,"number":1}])"));
  EXPECT_EQ(drive["objects"][0], (json{{"index", 0x1000},
                                       {"subindex", 0},
                                       {"size", 4},
                                       {"variable", false},
                                       {"writable", false},
                                       {"label", "(ReadOnly) Device type"},
                                       {"value", "0x00020192"}}));
  EXPECT_THAT(NTest::RunBench(arguments).output,
              AllOf(HasSubstr("CAN 1 (CANopen)\n\nNode 5, Valves: "),
                    HasSubstr("  1008   00   var   (Const) Manufacturer device name       Valve terminal\n"),
                    HasSubstr("  TPDO 2: COB-ID 285h\n"), EndsWith("\n2 nodes\n")));
}

TEST_F(Nodes, FaultsOfTheFilesAreToldWithTheirPlace) {
  NTest::WriteFile(
      database,
      "VERSION \"\"\nBU_: A B C\nBA_DEF_ BU_ \"CO_ID\" INT 0 127;\nBA_DEF_ BU_ \"CO_DCF\" STRING ;\n"
      "BA_DEF_ \"ProtocolType\" STRING ;\nBA_ \"ProtocolType\" \"J1939\";\nBA_ nonsense;\n"
      "BA_ \"CO_ID\" BU_ A 1;\nBA_ \"CO_DCF\" BU_ A \"a.eds\";\n"
      "BA_ \"CO_ID\" BU_ B 2;\nBA_ \"CO_DCF\" BU_ B \"b.eds\";\nBA_ \"CO_ID\" BU_ C 3;\n");
  NTest::WriteFile(folder / "a.eds",
                   "[MandatoryObjects]\nSupportedObjects=1\n1=0x1000\n2=0x1001\n[1000]\nParameterName=Type\n"
                   "DataType=7\nAccessType=ro\nDefaultValue=0\n");
  const auto outcome = NTest::RunBench("nodes --db " + NTest::Quoted(database));
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.output,
              AllOf(HasSubstr("CAN 1, J1939\n"), HasSubstr("Node 2, B: no description\n"),
                    HasSubstr("  1000   00   4     (ReadOnly) Type  0\n"), EndsWith("\n3 nodes\n")));
  EXPECT_THAT(outcome.errors,
              AllOf(HasSubstr("net.dbc:7: "), HasSubstr("node B: CO_DCF is \"b.eds\", there is no such file"),
                    HasSubstr("a.eds:2: "), HasSubstr("a.eds:4: [1001] is missing"),
                    testing::Not(HasSubstr("node C"))));
}

TEST_F(Nodes, BadInputIsOneLine) {
  NTest::WriteFile(database, "no database");
  for (const auto& arguments : {"--db " + NTest::Quoted(database),
                                "--db " + NTest::Quoted(folder / "none.dbc"), std::string("more.dbc")}) {
    const auto outcome = NTest::RunBench("nodes " + arguments);
    EXPECT_EQ(outcome.status, 2) << arguments;
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << outcome.errors;
  }
}

}  // namespace
