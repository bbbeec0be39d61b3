#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <regex>

#include "tests/bench/program.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

// "000 01 00": frames of NMT and error control, without times.
std::vector<std::string> Frames(const std::string& output) {
  const std::regex frame("can[0-9]  (000|7..)   \\[[0-9]\\]  ([0-9A-F ]*[0-9A-F])");
  std::vector<std::string> frames;
  for (std::sregex_iterator it(output.begin(), output.end(), frame), end; it != end; ++it) {
    frames.push_back((*it)[1].str() + " " + (*it)[2].str());
  }
  return frames;
}

TEST(Nmt, CommandsReachTheNodes) {
  const auto all = NTest::RunBench("nmt stop all --device 5");
  EXPECT_EQ(all.status, 0) << all.errors;
  EXPECT_THAT(Frames(all.output), ElementsAre("705 00", "000 02 00"));
  const auto some = NTest::RunBench("nmt reset 9 5 --device 5 --device 9 --variant tesmond");
  EXPECT_EQ(some.status, 0) << some.errors;
  EXPECT_THAT(Frames(some.output), testing::UnorderedElementsAre("705 00", "709 00", "000 81 05", "705 00",
                                                                 "000 81 09", "709 00"));
}

TEST(Nmt, TheModuleSaysWhenNothingSendsOnTheNetwork) {
  const std::string twoChannels = " --can 1=virtual --can 2=virtual:b --network 2";
  const auto halvard = NTest::RunBench("nmt stop all" + twoChannels);
  EXPECT_EQ(halvard.status, 1);
  EXPECT_THAT(halvard.errors, HasSubstr("insert this block in the simulation setup"));
  const auto tesmond = NTest::RunBench("nmt stop all --variant tesmond" + twoChannels);
  EXPECT_EQ(tesmond.status, 1);
  EXPECT_THAT(tesmond.errors, HasSubstr("on the CAN channel \"CAN2\""));
}

TEST(Nmt, BadInput) {
  const struct {
    const char* arguments;
    const char* error;
  } rows[] = {
      {"nmt halt all", "COMMAND halt: operational, preoperational, stop or reset is wanted"},
      {"nmt stop", "NODE is required"},
      {"nmt stop 0", "NODE 0: all, or a node-ID from 1 to 127 is wanted"},
      {"nmt stop 5 all", "NODE all: all, or a node-ID from 1 to 127 is wanted"},
      {"nmt stop 5 5", "NODE 5: this node-ID is given twice"},
      {"nmt stop all --network 5", "--network 5: a number from 1 to 4 is wanted"},
  };
  for (const auto& row : rows) {
    const auto outcome = NTest::RunBench(row.arguments);
    EXPECT_EQ(outcome.status, 2) << row.arguments;
    EXPECT_THAT(outcome.errors, HasSubstr(row.error));
    EXPECT_EQ(outcome.output, "");
  }
}

TEST(Commands, AreListedInTheOrderOfTheirRegistration) {
  const auto outcome = NTest::RunBench("commands --json");
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  const json commands = json::parse(outcome.output);
  ASSERT_EQ(commands.size(), 77u);
  EXPECT_EQ(commands[0], (json{{"name", "Tool.Brackwell"},
                               {"caption", "Brackwell"},
                               {"tooltip", "Brackwell"},
                               {"group", "CANopen"},
                               {"groupPosition", 1},
                               {"state", 1},
                               {"bitmap", 228},
                               {"smallIcon", 258},
                               {"largeIcon", 259}}));
  EXPECT_EQ(commands[2]["name"], "Insert.CANopenScanner");
  EXPECT_TRUE(commands[2]["group"].is_null());
  EXPECT_EQ(commands[76]["name"], "CANopen.Reset.10");
  EXPECT_EQ(commands[76]["groupPosition"], 74);
  EXPECT_THAT(NTest::RunBench("commands --variant tesmond").output,
              HasSubstr("CANopen.Stop.All.1              2      All nodes\n"));
}

}  // namespace
