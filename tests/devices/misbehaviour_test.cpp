// What the server does when it is told to misbehave; what a client makes of it is in loopback_test.cpp.

#include "tests/devices/bench.h"

namespace {

using namespace NDevicesTest;
using namespace NDevices;

class Misbehaving : public testing::Test {
 protected:
  Misbehaviour& faults() { return bench.device.Faults(); }
  Bench bench{{.nodeId = kNode, .sdo = {.blockSize = 4}, .misbehaviour = {}}};
};

TEST_F(Misbehaving, AnswersComeLateInTheirOrder) {
  faults().answerDelay = 50ms;
  const Time start = bench.now;
  bench.Request("40 00 10 00");
  bench.RunFor(30ms);
  bench.Request("40 07 20 00");
  bench.RunFor(100ms);
  EXPECT_EQ(bench.SentSince(start),
            (std::vector<std::string>{"50: 585 43 00 10 00 91 01 0F 00", "80: 585 4F 07 20 00 00 00 00 00"}));
}

TEST_F(Misbehaving, TheClientsTimeBeginsWithTheLateAnswer) {
  faults().answerDelay = 5s;
  const Time start = bench.now;
  bench.Request("40 00 20 00");
  bench.RunFor(20s);
  EXPECT_EQ(bench.SentSince(start), (std::vector<std::string>{"5000: 585 41 00 20 00 25 00 00 00",
                                                              "13000: 585 80 00 20 00 00 00 04 05"}));
}

TEST_F(Misbehaving, NoLateAnswerLeavesAStoppedDevice) {
  faults().answerDelay = 50ms;
  bench.Request("40 00 10 00");
  bench.Feed("000 02 05");
  bench.RunFor(1s);
  EXPECT_TRUE(bench.sent.empty());
}

TEST_F(Misbehaving, SilenceConcernsSdoOnly) {
  faults().silent = true;
  bench.Play("> 40 00 10 00 > A4 00 10 00 7F");
  bench.Feed("705 R");
  EXPECT_EQ(bench.Sent(), std::vector<std::string>{"705 7F"});
  EXPECT_EQ(bench.device.NextDeadline(), kNever);
}

}  // namespace
