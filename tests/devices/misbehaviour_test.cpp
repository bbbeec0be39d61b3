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
  bench.Play({{TX, "40 00 10 00"}, {TX, "A4 00 10 00 7F"}});
  bench.Feed("705 R");
  EXPECT_EQ(bench.Sent(), std::vector<std::string>{"705 7F"});
  EXPECT_EQ(bench.device.NextDeadline(), kNever);
}

TEST_F(Misbehaving, WrongToggleAtTheSegment) {
  faults().wrongToggle = true;
  faults().segment = 2;
  bench.Play({{TX, "40 08 10 00"},
              {RX, "41 08 10 00 14"},
              {TX, "60"},
              {RX, "00 53 69 6D 75 6C 61 74"},
              {TX, "70"},
              {RX, "00 65 64 20 49 2F 4F 20"}});
  bench.Play({{TX, "21 00 20 00 0F"}, {RX, "60 00 20 00"}, {TX, "00"}, {RX, "20"}, {TX, "10"}, {RX, "20"}});
}

TEST_F(Misbehaving, WrongSequenceNumber) {
  faults().wrongSequence = true;
  faults().segment = 2;
  bench.Play({{TX, "A4 08 10 00 7F"},
              {RX, "C6 08 10 00 14"},
              {TX, "A3"},
              {RX, "01 53 69 6D 75 6C 61 74"},
              {RX, "03 65 64 20 49 2F 4F 20"},
              {RX, "83 64 65 76 69 63 65"},
              {TX, "80 08 10 00"}});
  bench.Play({{TX, "C6 02 20 00 20"},
              {RX, "A4 02 20 00 04"},
              {TX, "01"},
              {TX, "02"},
              {TX, "03"},
              {TX, "04"},
              {RX, "A2 05 04"}});
}

TEST_F(Misbehaving, ASegmentIsDroppedOnce) {
  faults().dropSegment = true;
  faults().segment = 2;
  bench.Play({{TX, "A4 08 10 00 7F"},
              {RX, "C6 08 10 00 14"},
              {TX, "A3"},
              {RX, "01 53 69 6D 75 6C 61 74"},
              {RX, "83 64 65 76 69 63 65"}});
  bench.Play(
      {{TX, "A2 01 7F"}, {RX, "01 65 64 20 49 2F 4F 20"}, {RX, "82 64 65 76 69 63 65"}, {TX, "80 08 10 00"}});
  bench.Play({{TX, "C6 02 20 00 20"},
              {RX, "A4 02 20 00 04"},
              {TX, "01"},
              {TX, "02"},
              {TX, "03"},
              {TX, "04"},
              {RX, "A2 01 04"},
              {TX, "80 02 20 00"}});
  bench.Play(
      {{TX, "40 08 10 00"}, {RX, "41 08 10 00 14"}, {TX, "60"}, {RX, "00 53 69 6D 75 6C 61 74"}, {TX, "70"}});
  bench.Play({{TX, "21 00 20 00 0F"}, {RX, "60 00 20 00"}, {TX, "00"}, {RX, "20"}, {TX, "10"}});
}

TEST_F(Misbehaving, BadCrc) {
  faults().badCrc = true;
  bench.SetBytes({0x2002, 0}, Counting(7));  // CRC 26B3h
  bench.Play({{TX, "A4 02 20 00 7F"},
              {RX, "C6 02 20 00 07"},
              {TX, "A3"},
              {RX, "81 01 02 03 04 05 06 07"},
              {TX, "A2 01 7F"},
              {RX, "C1 4C D9"},
              {TX, "80 02 20 00 04 00 04 05"}});
  bench.Play({{TX, "C6 02 20 00 07"},
              {RX, "A4 02 20 00 04"},
              {TX, "81 01 02 03 04 05 06 07"},
              {RX, "A2 01 04"},
              {TX, "C1 B3 26"},
              {RX, "80 02 20 00 04 00 04 05"}});
}

TEST_F(Misbehaving, AbortsAtOnceOrAtASegment) {
  faults().abort = AbortCode{0x08000021};
  for (const char* request :
       {"40 02 20 00", "2F 02 20 00 01", "21 02 20 00 05", "A4 02 20 00 7F", "C6 02 20 00 05"}) {
    bench.Play({{TX, request}, {RX, "80 02 20 00 21 00 00 08"}});
  }
  faults().abortAtSegment = 2;
  bench.Play({{TX, "40 00 10 00"}, {RX, "43 00 10 00 91 01 0F 00"}});
  bench.Play({{TX, "40 08 10 00"},
              {RX, "41 08 10 00 14"},
              {TX, "60"},
              {RX, "00 53 69 6D 75 6C 61 74"},
              {TX, "70"},
              {RX, "80 08 10 00 21 00 00 08"}});
  bench.Play({{TX, "A4 08 10 00 7F"},
              {RX, "C6 08 10 00 14"},
              {TX, "A3"},
              {RX, "01 53 69 6D 75 6C 61 74"},
              {RX, "80 08 10 00 21 00 00 08"}});
}

TEST_F(Misbehaving, TheBlockSizeChangesBetweenSubBlocks) {
  faults().varyBlockSize = true;
  bench.Play({{TX, "C6 02 20 00 40"},
              {RX, "A4 02 20 00 04"},
              {TX, "01"},
              {TX, "02"},
              {TX, "03"},
              {TX, "04"},
              {RX, "A2 04 02"},
              {TX, "01"},
              {TX, "02"},
              {RX, "A2 02 04"}});
}

}  // namespace
