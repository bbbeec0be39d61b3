#include <gmock/gmock.h>

#include <chrono>
#include <regex>
#include <thread>

#include "tests/bench/program.h"

namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StrEq;

class Shell : public testing::Test {
 protected:
  NTest::Outcome Run(const std::string& lines, const std::string& options, bool piped = true) {
    NTest::WriteFile(script, lines);
    const std::string file = NTest::Quoted(script);
    return NTest::RunBench("shell " + options + (piped ? " < " + file : " " + file));
  }

  const NTest::TestFolder folder;
  const std::filesystem::path script = folder / "it.txt";
};

const std::string kPlant = OSTREL_SOURCE_DIR "/examples/plant/";

TEST_F(Shell, AScriptDrivesAPlant) {
  const std::string devices = "--device 5:" + NTest::Quoted(kPlant + "valves.dcf") +
                              "--device 9:" + NTest::Quoted(kPlant + "spindle.dcf") + "--db " +
                              NTest::Quoted(kPlant + "plant.dbc");
  const auto outcome =
      Run("# a comment, and blanks\n  start\nwait 9 preoperational\n\ntrace on\nnmt operational 9 5\n"
          "trace off # silence\nwait 5 operational 3\ntable\nrun \"" +
              kPlant + "plant.seq\"\nwait 5 stopped\nstop\nblocks\n",
          devices);
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.errors, "");
  EXPECT_THAT(outcome.output, AllOf(HasSubstr("000   [2]  01 05                        NMT: start, node 5\n"),
                                    HasSubstr("NMT: start, node 9\n"), HasSubstr("Spindle"),
                                    EndsWith("26 items sent\n* 1  Generator\n")));
  EXPECT_THAT(outcome.output, testing::Not(HasSubstr("RPDO")));
}

TEST_F(Shell, AnErrorStopsAScriptAtItsLine) {
  const std::string started = "start\nstop\nhelp quit\n";
  const struct {
    std::string line;
    int status;
    const char* error;
  } rows[] = {
      {"dance", 2, "\"dance\": no such command; help lists them"},
      {"load", 2, "\"load FILE.seq\" is wanted"},
      {"load none.seq", 2, "none.seq: no such file"},
      {"load \"none", 2, "a quotation mark is missing"},
      {"trace maybe", 2, "\"maybe\": on or off is wanted"},
      {"sleep long", 2, "\"long\": a number of seconds is wanted"},
      {"nmt halt all", 2, "COMMAND halt: operational, preoperational, stop or reset is wanted"},
      {"nmt stop 128", 2, "NODE 128: all, or a node-ID from 1 to 127 is wanted"},
      {"nmt stop all network 5", 2, "\"5\": a network from 1 to 4 is wanted"},
      {"use 2", 2, "there is no such generator"},
      {"run", 1, "no measurement runs; start begins one"},
      {"stop", 1, "no measurement runs; start begins one"},
      {"save", 1, "the configuration has no file yet; save FILE.json gives it one"},
  };
  for (const auto& row : rows) {
    const auto outcome = Run(started + row.line + "\nhelp help\n", "");
    EXPECT_EQ(outcome.status, row.status) << row.line;
    EXPECT_THAT(outcome.errors, HasSubstr(std::string("line 4: ") + row.error));
    EXPECT_THAT(outcome.output, StrEq("quit  Leave; so does the end of the input\n"));
  }
  EXPECT_THAT(Run("help quit\nwait 3 stopped 0.1", "", false).errors,
              HasSubstr("it.txt:2: no measurement runs"));
}

TEST_F(Shell, WhatIsNotReachedInTimeFails) {
  const auto silent = Run("start\nwait 3 operational 0.2\n", "--device 5");
  EXPECT_EQ(silent.status, 1);
  EXPECT_THAT(silent.errors, HasSubstr("line 2: node 3 was not in this state within 0.200 s"));
  const auto network = Run("start\nnmt stop all network 2\n", "--can 1=virtual --can 2=virtual:b");
  EXPECT_EQ(network.status, 1);
  EXPECT_THAT(network.errors, HasSubstr("insert this block in the simulation setup"));
}

TEST_F(Shell, WhatIsSavedIsThereTheNextTime) {
  const std::filesystem::path other = folder / "other";
  std::filesystem::create_directories(other);
  const std::string file = "\"" + (other / "mine.json").string() + "\"";
  const auto saved = Run("load \"" + kPlant + "plant.seq\"\nsave " + file + "\nsave\n",
                         "--device 5:" + NTest::Quoted(kPlant + "valves.dcf") +
                             "--device 9:" + NTest::Quoted(kPlant + "spindle.dcf") + "--db " +
                             NTest::Quoted(kPlant + "plant.dbc"));
  EXPECT_EQ(saved.status, 0) << saved.errors;
  const auto again = Run("start\nrun\n", "--config " + file);
  EXPECT_EQ(again.status, 0) << again.errors;
  EXPECT_EQ(again.output, "26 items sent\n");
  // Under another name that is the configuration from then on, and what the block does not know stays in it.
  const std::string text = std::regex_replace(NTest::ReadFile(other / "mine.json"), std::regex("\"Name\""),
                                              "\"Unknown\": \"kept\", \"Name\"");
  NTest::WriteFile(other / "mine.json", text);
  const auto moved = Run(
      "save \"" + (folder / "moved.json").string() + "\"\nload \"" + kPlant + "../first-steps.seq\"\nsave\n",
      "--config " + file);
  EXPECT_EQ(moved.status, 0) << moved.errors;
  EXPECT_EQ(NTest::ReadFile(other / "mine.json"), text);
  EXPECT_THAT(NTest::ReadFile(folder / "moved.json"),
              AllOf(HasSubstr("first-steps.seq"), HasSubstr("\"Unknown\": \"kept\"")));
  EXPECT_EQ(Run("save \"" + (folder / "none" / "mine.json").string() + "\"\n", "").status, 1);
}

TEST_F(Shell, TheDemonstrationIsWhole) {
  const auto outcome = Run("start\nwait 9 preoperational\nrun\nwait 5 stopped\ntable\n",
                           "--config " + NTest::Quoted(kPlant + "plant.json"));
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.errors, "");
  EXPECT_THAT(outcome.output, AllOf(HasSubstr("26 items sent\n"), HasSubstr("Valve terminal")));
}

TEST_F(Shell, CyclicTransmissionGoesOnBehindASequence) {
  const std::string cyclic =
      "<CyclicMsgs><SYNC COBID=\"0x80\" SendCycle=\"20\" SendDelay=\"0\" "
      "Enabled=\"1\"/></CyclicMsgs></CANopenIG>";
  const std::string wish = "cyclic transmission begins with the next run\n";
  const std::string start =
      "<CANopenIG><Sequence><NMT NodeID=\"0\" NMTState=\"1\" Enabled=\"1\"/></Sequence>" + cyclic;
  const struct {
    std::string sequence;
    const char* commands;
    std::string begin;
    bool sends;
  } rows[] = {
      {start, "cyclic on\nrun\n", wish + "1 item sent\n", true},
      {start, "cyclic on\ncyclic off\nrun\n", wish + "1 item sent\n", false},
      {start, "cyclic on\nrun\ncyclic off\n", wish + "1 item sent\n", false},
      {"<CANopenIG><Sequence/>" + cyclic, "cyclic on\nrun\n", wish + "0 items sent\n", true},
  };
  for (const auto& row : rows) {
    NTest::WriteFile(folder / "it.seq", row.sequence);
    const auto outcome = Run("start\nload \"" + (folder / "it.seq").string() + "\"\n" + row.commands +
                                 "trace on\nsleep 0.2\ncyclic off\ntrace off\nsleep 0.1\n",
                             "");
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_THAT(outcome.output, testing::StartsWith(row.begin)) << row.commands;
    EXPECT_EQ(outcome.output.find("SYNC\n") != std::string::npos, row.sends) << outcome.output;
  }
}

}  // namespace
