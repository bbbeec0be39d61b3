#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <regex>

#include "tests/bench/program.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

constexpr char kSync[] = R"(<SYNC COBID="0x80" Enabled="1"/>)";
constexpr char kDisabled[] = R"(<SYNC COBID="0x81" Enabled="0"/>)";
constexpr char kRemote[] = R"(<RTR COBID="0x705" DLC="1" Enabled="1"/>)";
constexpr char kExtended[] = R"(<SYNC COBID="0x20000ABC" Enabled="1"/>)";
constexpr char kUnsendable[] = R"(<PDO COBID="0x205" Data="uint:zz" DLC="2" NodeID="5" Enabled="1"/>)";
constexpr char kStart[] = R"(<CYCLETX StartFlag="1" Enabled="1"/>)";
constexpr char kPause[] = R"(<PAUSE PauseMilliSec="200" Enabled="1"/>)";
constexpr char kCyclic[] = R"(<SYNC COBID="0x90" SendCycle="20" SendDelay="0" Enabled="1"/>)";
constexpr char kCyclicUnsendable[] =
    R"(<PDO COBID="0x205" Data="uint:zz" DLC="2" NodeID="5" SendCycle="20" SendDelay="0" Enabled="1"/>)";

class Play : public testing::Test {
 protected:
  NTest::Outcome Run(const std::string& sequence, const std::string& cyclic, const std::string& options) {
    NTest::WriteFile(file, "<CANopenIG><Sequence>" + sequence + "</Sequence><CyclicMsgs>" + cyclic +
                               "</CyclicMsgs></CANopenIG>");
    return NTest::RunBench("play " + NTest::Quoted(file) + options);
  }

  const NTest::TestFolder folder;
  const std::filesystem::path file = folder / "it.seq", log = folder / "it.log";
};

TEST_F(Play, ShowsEachFrameOnceAndASummary) {
  const auto outcome = Run(std::string(kSync) + kDisabled + kRemote + kExtended, kCyclic, "");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors, "");
  EXPECT_THAT(outcome.output, testing::StartsWith("  can1  080   [0] \n"
                                                  "  can1  705   [1]  remote request\n"
                                                  "  can1  00000ABC   [0] \n"
                                                  "3 items, 3 frames, 0."));
  EXPECT_THAT(outcome.output, testing::EndsWith(" s, no errors\n"));
}

TEST_F(Play, JsonIsOneDocument) {
  const auto outcome = Run(std::string(kSync) + kRemote + kExtended, "", "--json --can 7=virtual --delay 20");
  const json document = json::parse(outcome.output);
  EXPECT_EQ(document["items"], 3);
  EXPECT_EQ(document["transfers"], json::array());
  EXPECT_EQ(document["errors"], json::array());
  ASSERT_EQ(document["frames"].size(), 3u);
  json frame = document["frames"][1];
  EXPECT_NEAR(frame["time"].get<double>(), 0.040, 0.030);
  frame.erase("time");
  EXPECT_EQ(frame, json::parse(R"({"channel":7,"id":1797,"extended":false,"remote":true,"data":""})"));
  EXPECT_EQ(document["frames"][2]["extended"], true);
  EXPECT_EQ(document["frames"][2]["id"], 0xABC);
}

TEST_F(Play, LogHoldsAllChannelsOfABus) {
  Run(kRemote, "",
      "--can 1=virtual:a --can 2=virtual:a --can 3=virtual --channel 2 --log " + NTest::Quoted(log));
  const std::string lines =
      std::regex_replace(NTest::ReadFile(log), std::regex("\\([0-9]{10}\\.[0-9]{6}\\)"), "(time)");
  EXPECT_EQ(lines, "(time) can2 705#R1\n(time) can1 705#R1\n");
}

TEST_F(Play, AFailedItemIsNamedAndEndsTheRun) {
  const auto sequence = Run(std::string(kSync) + kUnsendable + kSync, "", "--for 60");
  EXPECT_EQ(sequence.status, 1);
  EXPECT_THAT(sequence.errors, HasSubstr("not transmitted completely"));
  EXPECT_THAT(sequence.errors, HasSubstr("(item 2 of the sequence: PDO, "));
  EXPECT_THAT(sequence.output, HasSubstr("1 of 3 items, 1 frame, "));
  EXPECT_THAT(sequence.output, HasSubstr("1 error\n"));
  const auto cyclic = Run("", kCyclicUnsendable, "--cyclic --json");
  EXPECT_EQ(cyclic.status, 1);
  EXPECT_EQ(json::parse(cyclic.output)["errors"].size(), 1u);
  EXPECT_THAT(cyclic.errors, HasSubstr("(item 1 of the cyclic list: PDO, "));
}

TEST_F(Play, CyclicTransmissionBeginsWithTheRunAndLastsAsLongAsAsked) {
  const auto outcome = Run(kSync, kCyclic, "--cyclic --for 0.5 --json");
  const json document = json::parse(outcome.output);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NEAR(static_cast<double>(document["frames"].size()), 26, 4);  // 25 cyclic ones and the item
  EXPECT_LT(document["frames"][0]["time"], 0.1);
}

TEST_F(Play, CyclicTransmissionThatASequenceLeavesRunningIsStoppedAndMentioned) {
  const auto outcome = Run(std::string(kStart) + kPause, kCyclic, "");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_THAT(outcome.errors, HasSubstr("cyclic transmission was still running"));
  const auto asked = Run(std::string(kStart) + kPause, kCyclic, "--cyclic --for 0.5");
  EXPECT_EQ(asked.errors, "");  // and the item that starts it has not toggled it off
  EXPECT_THAT(asked.output, Not(HasSubstr(" 10 frames")));
}

TEST_F(Play, NothingToSendEndsAtOnceAndIsMentioned) {
  EXPECT_THAT(Run(kDisabled, "", "").errors, HasSubstr("no item is enabled"));
  EXPECT_THAT(Run("", kCyclic, "").errors, HasSubstr("--cyclic sends the cyclic list"));
  EXPECT_THAT(Run("", "", "--cyclic").errors, HasSubstr("no enabled items"));
}

TEST_F(Play, TransfersWithASimulatedDeviceAreOfEveryKind) {
  const std::string example = NTest::Quoted(OSTREL_SOURCE_DIR "/examples/sdo-transfers.seq");
  const auto outcome = NTest::RunBench("play " + example + "--device 5 --json");
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  const json document = json::parse(outcome.output);
  std::vector<std::string> seen;
  for (const json& transfer : document["transfers"]) {
    seen.push_back(transfer["kind"].get<std::string>() + ' ' + transfer["direction"].get<std::string>() +
                   ' ' + transfer["bytes"].dump() + ' ' + transfer["result"].get<std::string>() + ' ' +
                   transfer["abort"].dump());
  }
  EXPECT_THAT(seen, testing::ElementsAre("expedited upload 4 ok null", "expedited download 2 ok null",
                                         "segmented upload 20 ok null", "segmented download 15 ok null",
                                         "block upload 4096 ok null", "block download 500 ok null",
                                         "expedited upload 0 aborted \"06020000\"",
                                         "expedited download 4 aborted \"06010002\""));
}

TEST_F(Play, ADeviceMisbehavesAsItIsTold) {
  const auto outcome =
      Run(R"(<SDO NodeID="5" Index="0x1000" Upload="1" COBIDTx="0x605" COBIDRx="0x585" Enabled="1"/>)", "",
          "--device 5,abort=0x08000021 --json");
  EXPECT_EQ(json::parse(outcome.output)["transfers"][0]["abort"], "08000021");
}

// A thousand segments at least of 111 bits, at 1 Mbit/s.
TEST_F(Play, ABusWithABitRateTakesItsTime) {
  const auto outcome =
      Run(R"(<SDO NodeID="5" COBIDTx="0x605" COBIDRx="0x585" Index="0x2002" Data="string:x" )"
          R"(BlockTransfer="1" ObjectSize="7000" AutoCANID="1" Enabled="1"/>)",
          "", "--device 5 --can 1=virtual,bitrate=1000000 --json");
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  const json document = json::parse(outcome.output);
  ASSERT_EQ(document["transfers"].size(), 1u);
  EXPECT_EQ(document["transfers"][0]["bytes"], 7000);
  EXPECT_EQ(document["transfers"][0]["result"], "ok");
  const json& frames = document["frames"];
  const double took = frames.back()["time"].get<double>() - frames[0]["time"].get<double>();
  EXPECT_GT(took, 0.111);
  EXPECT_LT(took, 1.5);
}

TEST_F(Play, ATransferThatCannotStartIsAnError) {
  const auto outcome =
      Run(R"(<SDO NodeID="0" Upload="1" AutoCANID="0" Enabled="1"/>)" + std::string(kSync), "", "");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("SDO transfer not started"));
  EXPECT_THAT(outcome.output, HasSubstr("080   [0]")) << "the sequence goes on";
}

}  // namespace
