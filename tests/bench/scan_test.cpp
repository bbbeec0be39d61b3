#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <regex>

#include "tests/bench/program.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;

class Scan : public testing::Test {
 protected:
  NTest::Outcome Play(const std::string& sequence, const std::string& cyclic, const std::string& options) {
    NTest::WriteFile(file, "<CANopenIG><Sequence>" + sequence + "</Sequence><CyclicMsgs>" + cyclic +
                               "</CyclicMsgs></CANopenIG>");
    return NTest::RunBench("play " + NTest::Quoted(file) + options);
  }

  const NTest::TestFolder folder;
  const std::filesystem::path file = folder / "it.seq", log = folder / "it.log";
};

// Of a node from 1 to 9.
std::string Upload(int node, const std::string& object) {
  const std::string digit = std::to_string(node);
  return "<SDO NodeID=\"" + digit + "\" COBIDTx=\"0x60" + digit + "\" COBIDRx=\"0x58" + digit +
         "\" Upload=\"1\" AutoCANID=\"1\" " + object + " Enabled=\"1\"/>";
}

// Everything that the scanner learns from uploads.
std::string Identify(int node) {
  return Upload(node, R"(Index="0x1000" SubIndex="0x0")") + Upload(node, R"(Index="0x1008" SubIndex="0x0")") +
         Upload(node, R"(Index="0x1018" SubIndex="0x1")") + Upload(node, R"(Index="0x1018" SubIndex="0x4")");
}

std::string Heartbeat(int node, int state, const std::string& timing = "") {
  const std::string digit = std::to_string(node);
  return "<HBEAT NodeID=\"" + digit + "\" COBID=\"0x70" + digit + "\" NMTState=\"" + std::to_string(state) +
         "\" " + timing + " Enabled=\"1\"/>";
}

std::size_t Count(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

TEST_F(Scan, JsonListsNodesByChannelAndNumber) {
  const auto outcome = NTest::RunBench(
      "scan --can 2=virtual:a --can 1=virtual:b --channel 2 --device 9 --device 5 --for 0.3 --json");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors, "");
  const json document = json::parse(outcome.output);
  EXPECT_EQ(document["errors"], json::array());
  ASSERT_EQ(document["nodes"].size(), 2u);
  EXPECT_EQ(document["nodes"][0], json::parse(R"({"id":5,"channel":2,"state":0,"stateText":"Boot up",
      "alive":true,"errorRegister":0,"master":" ","priority":"?","name":null,"profile":null,"vendorId":null,
      "serial":null,"image":1})"));
  EXPECT_EQ(document["nodes"][1]["id"], 9);
}

TEST_F(Scan, EachChangeIsALineElsewhereThanOnATerminal) {
  const auto outcome = NTest::RunBench("scan --device 5 --device 9 --for 0.3");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(std::regex_replace(outcome.output, std::regex("[0-9]+\\.[0-9]+"), "0.0"),
              testing::StrEq(" (0.0)  can1  node 5: heard, state Boot up\n"
                             " (0.0)  can1  node 9: heard, state Boot up\n"
                             "2 nodes, 0.0 s, no errors\n"));
}

TEST_F(Scan, SendsNothing) {
  const auto quiet = NTest::RunBench("scan --can 1=virtual:a --can 2=virtual:a --device 5 --for 0.3 --log " +
                                     NTest::Quoted(log));
  EXPECT_EQ(std::regex_replace(NTest::ReadFile(log), std::regex("\\([0-9.]+\\)"), "(time)"),
            "(time) can1 705#00\n(time) can2 705#00\n");
  EXPECT_THAT(quiet.output, testing::AllOf(HasSubstr("can1  node 5"), HasSubstr("can2  node 5")));
  // Nor does it while others talk: every frame is the generator's or the device's answer to it.
  std::vector<std::string> logs;
  for (const char* option : {"--scan", ""}) {
    Play(Identify(5) + Heartbeat(7, 5), "", "--device 5 --log " + NTest::Quoted(log) + option);
    logs.push_back(std::regex_replace(NTest::ReadFile(log), std::regex("\\([0-9.]+\\)"), "(time)"));
  }
  EXPECT_THAT(logs[0], HasSubstr("585#"));
  EXPECT_EQ(logs[0], logs[1]);
}

TEST_F(Scan, BesidePlayItTellsWhatBecomesOfTheNodes) {
  const std::string sequence =
      Heartbeat(7, 127) + Identify(5) + Identify(6) +
      R"(<EMCY NodeID="7" COBID="0x87" ErrCode="0x8130" Errreg="0x11" Enabled="1"/>)";
  const std::string devices = "--device 5 --device 6 --scan ";
  const auto lines = Play(sequence, "", devices);
  EXPECT_EQ(lines.status, 0) << lines.errors;
  for (const char* part : {"  can1  707   [1]  7F\n  can1  node 7: heard, state Preoperational\n",
                           "  can1  node 5: name \"Simulated I/O device\"\n", "  can1  node 5: profile 401\n",
                           "  can1  node 6: vendor-ID 0h\n", "  can1  node 6: serial number 6\n",
                           "  can1  node 7: error register 11h (generic, communication)\n"}) {
    EXPECT_EQ(Count(lines.output, part), 1u) << part;
  }
  EXPECT_THAT(lines.output, HasSubstr("\nID  State           CAN  Name "));
  EXPECT_THAT(lines.output, HasSubstr("\n7   Preoperational  1    --"));
  const json document = json::parse(Play(sequence, "", devices + "--json").output);
  ASSERT_EQ(document["nodes"].size(), 3u);
  const json& node = document["nodes"][1];
  EXPECT_EQ(node["name"], "Simulated I/O device");
  EXPECT_THAT((std::vector<int>{node["id"], node["profile"], node["vendorId"], node["serial"]}),
              ElementsAre(6, 401, 0, 6));
  EXPECT_EQ(document["nodes"][2]["errorRegister"], 0x11);
}

TEST_F(Scan, StatesThatFollowAtOnceAreAllTold) {
  const std::string timing = R"(SendCycle="20" SendDelay="0")";
  // It ends a moment behind the last of them: blocks get no more of what is still on its way at a stop.
  const std::string end = R"(<PAUSE PauseMilliSec="250" Enabled="1"/><CYCLETX StartFlag="0" Enabled="1"/>)"
                          R"(<PAUSE PauseMilliSec="100" Enabled="1"/>)";
  const auto outcome = Play(end, Heartbeat(7, 5, timing) + Heartbeat(7, 4, timing), "--cyclic --scan");
  const std::size_t frames = Count(outcome.output, "  can1  707 ");
  EXPECT_GE(frames, 10u);
  EXPECT_EQ(Count(outcome.output, "  can1  node 7: "), frames) << outcome.output;
}

// A device with a name that would clear a screen and is no UTF-8.
constexpr char kHostileLog[] = R"((0.000000) can1 705#00
(0.000100) can1 605#4008100000000000
(0.000200) can1 585#430810001B63FFC3
(0.000300) can1 705#05
(0.000350) can1 705#7F
(0.000400) can1 085#3081110000000000
)";

TEST_F(Scan, OfALogEndsWithItAndShowsNothingRaw) {
  NTest::WriteFile(log, kHostileLog);
  const std::string scan = "scan --can \"1=replay:" + log.string() + ",speed=max\" ";
  const auto lines = NTest::RunBench(scan);
  EXPECT_EQ(lines.status, 0) << lines.errors;
  EXPECT_THAT(lines.output, HasSubstr("can1  node 5: name \"?c"));
  EXPECT_THAT(lines.output, HasSubstr("000350)  can1  node 5: state Preoperational\n"));
  EXPECT_EQ(Count(lines.output, "\n"), 6u) << lines.output;
  const auto document = NTest::RunBench(scan + "--json");
  const json node = json::parse(document.output)["nodes"][0];
  EXPECT_EQ(node["state"], 127);
  EXPECT_EQ(node["errorRegister"], 0x11);
  EXPECT_EQ(node["name"].get<std::string>().substr(0, 2),
            "\x1B"
            "c");
  EXPECT_EQ(document.output.find('\x1B'), std::string::npos);
}

TEST(ScanHelp, NamesEveryOption) {
  const std::string help = NTest::RunBench("scan --help").output;
  for (const char* option : {"--can", "--channel", "--device", "--for", "--log", "--variant", "--module",
                             "--json", "Exit status", "Examples:", "virtual[:NAME]"}) {
    EXPECT_THAT(help, HasSubstr(option));
  }
}

TEST_F(Scan, TheDatabaseNamesNodesThatHaveNotToldTheirName) {
  const auto database = folder / "net.dbc";
  NTest::WriteFile(database,
                   "VERSION \"\"\nBU_: Pump Valve\nBA_DEF_ BU_ \"CO_ID\" INT 0 127;\n"
                   "BA_ \"CO_ID\" BU_ Pump 5;\nBA_ \"CO_ID\" BU_ Valve 9;\n");
  const auto outcome =
      NTest::RunBench("scan --json --for 0.2 --device 5 --device 7 --db " + NTest::Quoted(database));
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  const json nodes = json::parse(outcome.output)["nodes"];
  ASSERT_EQ(nodes.size(), 2u);
  EXPECT_EQ(nodes[0]["name"], "Pump");
  EXPECT_TRUE(nodes[1]["name"].is_null());

  const auto missing = NTest::RunBench("scan --for 0.2 --db " + NTest::Quoted(folder / "none.dbc"));
  EXPECT_EQ(missing.status, 2);
  EXPECT_THAT(missing.errors, HasSubstr("none.dbc"));
}

}  // namespace
