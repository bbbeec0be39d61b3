#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "tests/bench/program.h"

namespace {

using nlohmann::json;
using std::filesystem::path;
using testing::HasSubstr;

class Config : public testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(plant / "sub");
    NTest::WriteFile(plant / "sub" / "net.dbc",
                     "VERSION \"\"\nBU_: Pump Valve\nBA_DEF_ BU_ \"CO_ID\" INT 0 127;\n"
                     "BA_ \"CO_ID\" BU_ Pump 5;\nBA_ \"CO_ID\" BU_ Valve 9;\n");
    NTest::WriteFile(plant / "it.seq",
                     "<CANopenIG><Sequence><HBEAT NodeID=\"7\" COBID=\"0x707\" NMTState=\"5\" Enabled=\"1\"/>"
                     "</Sequence><CyclicMsgs/></CANopenIG>");
    NTest::WriteFile(plant / "it.log", "(0.000000) can1 705#00\n(0.000100) can1 709#05\n");
  }

  NTest::Outcome Run(const std::string& arguments) const { return NTest::RunBench(arguments); }
  // A configuration with a bus, and with the lines that are to stand in it.
  void Write(const std::string& bus, const std::string& more = "") const {
    NTest::WriteFile(file, R"({"format":1,"variant":"tesmond","language":1,"numberBase":10,
"channels":[{"number":4,"bus":")" +
                               bus + R"(","databases":["sub\\net.dbc"]},{"number":2,"bus":"virtual:b"}])" +
                               more + "}");
  }
  void WriteWithSequence(const std::string& sequence, const std::string& channel) const {
    Write("virtual",
          R"(,"devices":[{"channel":4,"node":9}],"blocks":[{"progId":"HarlowPlugIn.CANopenIG","settings":{
"Name":"Mine","CANChannel":")" +
              channel + R"(","LastCOIGSequenceRel":")" + sequence + "\"}}]");
  }
  // Status 2 and one line.
  void ExpectRefusal(const std::string& arguments, const std::string& named) const {
    SCOPED_TRACE(arguments);
    const NTest::Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, HasSubstr(named));
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << outcome.errors;
  }

  const NTest::TestFolder folder;
  const path plant = folder / path(u8"Anl\u00e4ge \u4e2d, old"), file = plant / "plant.json";
  const std::string config = "--config " + NTest::Quoted(file);
};

TEST_F(Config, PlaysWhatItsGeneratorRemembersFromWhereverItIs) {
  WriteWithSequence("it.seq", "4");
  const json played = json::parse(Run(config + "play --json").output);
  EXPECT_EQ(played["errors"], json::array());
  EXPECT_THAT(played.dump(), HasSubstr("\"channel\":4"));
  std::filesystem::rename(plant, folder / "plant, moved");
  const auto moved =
      Run("play --scan --frames --config " + NTest::Quoted(folder / "plant, moved" / "plant.json"));
  EXPECT_EQ(moved.status, 0) << moved.errors;
  EXPECT_THAT(moved.output, testing::AllOf(HasSubstr("can4  707   [1]  05"), HasSubstr("can4  709   [1]  00"),
                                           HasSubstr("Valve")));
}

TEST_F(Config, OptionsReplaceWhatItSaysOrAddToIt) {
  WriteWithSequence("none.seq", "4");
  const std::string sequence = NTest::Quoted(plant / "it.seq");
  const auto played = Run("play " + sequence + config + "--channel 2 --device 3 --scan --frames");
  EXPECT_EQ(played.status, 0) << played.errors;
  EXPECT_THAT(played.output,
              testing::AllOf(HasSubstr("can2  707"), HasSubstr("can2  703"), HasSubstr("can4  709")));
  const auto scan = Run("scan " + config + "--can 4=virtual:x --can 7=virtual:x --for 0.3");
  EXPECT_EQ(scan.status, 0) << scan.errors;
  EXPECT_THAT(scan.output, testing::AllOf(HasSubstr("can4  node 9"), HasSubstr("can7  node 9")));
  EXPECT_EQ(Run("commands " + config).status, 0);
  EXPECT_THAT(Run(config + "nodes").output, HasSubstr("Node 5, Pump"));
  EXPECT_THAT(Run(config + "nmt stop all").output, HasSubstr("can4  000   [2]  02 00"));
}

TEST_F(Config, IsSavedByAShellWithWhatItsGeneratorHasLoaded) {
  WriteWithSequence("", "4");
  std::string script = "blocks\nload \"SEQ\"\nsave\nsave \"OTHER\"\n";
  script.replace(script.find("SEQ"), 3, (plant / "it.seq").generic_string());
  script.replace(script.find("OTHER"), 5, (folder / "other.json").generic_string());
  NTest::WriteFile(folder / "script", script);
  const auto shell = Run("shell " + NTest::Quoted(folder / "script") + config);
  EXPECT_EQ(shell.status, 0) << shell.errors;
  EXPECT_THAT(shell.output, HasSubstr("Mine"));
  const auto saved = [&](const path& name) { return json::parse(NTest::ReadFile(name)); };
  EXPECT_EQ(saved(file)["blocks"][0]["settings"]["LastCOIGSequenceRel"], "it.seq");
  EXPECT_EQ(saved(file)["channels"][0]["databases"][0], "sub\\net.dbc");
  const std::u8string relative = (plant.filename() / "it.seq").u8string();
  EXPECT_EQ(saved(folder / "other.json")["blocks"][0]["settings"]["LastCOIGSequenceRel"],
            std::string(relative.begin(), relative.end()));
  EXPECT_EQ(Run("play --config " + NTest::Quoted(folder / "other.json")).status, 0);
}

TEST_F(Config, ReplaysALogBesideItAndNamesNodesByItsDatabase) {
  Write("replay:it.log,speed=max");
  const auto scan = Run("scan --json --for 1 " + config);
  EXPECT_EQ(scan.status, 0) << scan.errors;
  const json nodes = json::parse(scan.output)["nodes"];
  ASSERT_EQ(nodes.size(), 2u);
  EXPECT_EQ(nodes[0]["name"], "Pump");
  EXPECT_EQ(nodes[1]["channel"], 4);
}

TEST_F(Config, IsRefusedWhenItCannotBeUsed) {
  ExpectRefusal("play --config " + NTest::Quoted(folder / "none.json"), "none.json: no such file");
  Write("virtual");
  ExpectRefusal("play " + config, "there is no generator block");
  ExpectRefusal("describe it.eds --config " + NTest::Quoted(file), "--config");
  ExpectRefusal(config + "describe it.eds", "not a command for a configuration");
  ExpectRefusal(config + "scan " + config, "named twice");
  ExpectRefusal("scan --log " + NTest::Quoted(file) + config, "plant.json: this file is a part of");
  WriteWithSequence("none.seq", "4");
  ExpectRefusal("play " + config, "none.seq cannot be loaded: ");
  NTest::WriteFile(plant / "broken.seq", "<CANopenIG>\n");
  WriteWithSequence("broken.seq", "4");
  ExpectRefusal("play " + config, "broken.seq cannot be loaded: line 2, column 1: ");
  EXPECT_THAT(Run("config check " + NTest::Quoted(file)).errors,
              HasSubstr("cannot be loaded: line 2, column 1: "));
  WriteWithSequence("it.seq", "3");
  ExpectRefusal("play " + config,
                "CANChannel of the generator 3: there is no such CAN channel (channels: 4, 2)");
  WriteWithSequence("", "4");
  ExpectRefusal("play " + config, "remembers no sequence file");
  Write("virtual", ",\n\"blokcs\":[]");
  ExpectRefusal("serve " + config, "plant.json:3: unknown key \"blokcs\"");
}

TEST_F(Config, IsMadeCheckedAndShown) {
  std::filesystem::copy_file(plant / "sub" / "net.dbc", folder / "net.dbc");  // an absolute path stays one
  const std::string made = NTest::Quoted(plant / "sub" / "made.json");
  const std::string init = "config init " + made + "--can 3=virtual:x --device 6 --db " +
                           NTest::Quoted(folder / "net.dbc") + "--sequence " +
                           NTest::Quoted(plant / "it.seq");
  const auto outcome = Run(init);
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  ExpectRefusal(init, "made.json: this file is there; --force replaces it");
  EXPECT_EQ(Run(init + "--force").status, 0);
  std::filesystem::rename(plant, folder / "moved");
  const std::string moved = NTest::Quoted(folder / "moved" / "sub" / "made.json");
  const json shown = json::parse(Run("config show --json " + moved).output);
  EXPECT_EQ(shown["channels"][0]["bus"], "virtual:x");
  EXPECT_EQ(shown["devices"][0]["node"], 6);
  const json settings = shown["blocks"][0]["settings"];
  EXPECT_EQ(settings["CANChannel"], "3");
  EXPECT_THAT(settings["LastCOIGSequenceRel"], testing::AnyOf("../it.seq", "..\\it.seq"));
  EXPECT_THAT(Run("config show " + moved).output, HasSubstr("\nChannel 3: virtual:x\n  database "));
  EXPECT_THAT(Run("play --config " + moved).output, HasSubstr("can3  707"));
}

TEST_F(Config, CheckTellsEveryFault) {
  Write("replay:it.log,speed=max", R"(,"blocks":[{"progId":"HarlowPlugIn.CANopenScanner"}])");
  const std::string check = "config check " + NTest::Quoted(file);
  auto outcome = Run(check);
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_THAT(outcome.output, HasSubstr("plant.json: good, 2 channels, 1 database, 0 devices, 1 block\n"));
  NTest::WriteFile(
      file, "{\"format\": 1,\n\"variant\": \"x\",\n\"language\": 0, \"numberBase\": 10, \"channels\": []}");
  outcome = Run(check);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.errors,
              testing::AllOf(HasSubstr("plant.json:2: /variant: "), HasSubstr(":3: /language: ")));
  Write("replay:none.log", R"(,"devices":[{"channel":2,"node":3,"description":"no,ne.dcf"}])");
  std::filesystem::remove(plant / "sub" / "net.dbc");
  outcome = Run(check);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.output, "");
  for (const char* fault : {"/channels/0/bus: ", "none.log: no such file", "/channels/0/databases/0: ",
                            "net.dbc", "/devices/0/description: ", "no,ne.dcf"}) {
    EXPECT_THAT(outcome.errors, HasSubstr(fault));
  }
  WriteWithSequence("none.seq", "4");
  NTest::WriteFile(plant / "sub" / "net.dbc", "VERSION \"\"\nBU_ Pump\n");
  outcome = Run(check);
  EXPECT_EQ(outcome.status, 2);
  EXPECT_THAT(outcome.errors,
              testing::AllOf(HasSubstr("databases/0: warning: "), HasSubstr("net.dbc:2"),
                             HasSubstr("/blocks/0/settings: "), HasSubstr("none.seq cannot be loaded")));
}

}  // namespace
