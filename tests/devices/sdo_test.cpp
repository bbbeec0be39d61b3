// Expedited and segmented transfers, frame against frame. That whole transfers of any size are right, both
// ways, is seen in loopback_test.cpp.

#include "tests/devices/bench.h"

namespace {

using namespace NDevicesTest;
using namespace NDevices;

constexpr ObjectAddress kText = {0x2000, 0};
constexpr ObjectAddress kOctets = {0x2002, 0};

TEST(SdoServer, DownloadsAtOnceAndWithoutSize) {
  struct Case {
    const char* request;
    ObjectAddress address;
    Bytes value;
  };
  const Case cases[] = {
      {"2F 07 20 00 12", {0x2007, 0}, {0x12}},
      {"22 07 20 00 12 34 56 78", {0x2007, 0}, {0x12}},  // as much as the object has
      {"2B 04 20 00 9C FF", {0x2004, 0}, {0x9C, 0xFF}},
      {"23 16 10 01 E8 03 06", {0x1016, 1}, {0xE8, 0x03, 0x06, 0}},
      {"27 02 20 00 01 02 03", kOctets, {1, 2, 3}},
      {"22 02 20 00 01 02 03 04", kOctets, {1, 2, 3, 4}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.request);
    Bench bench;
    bench.Request(c.request);
    EXPECT_EQ(bench.Sent(), std::vector{"585 60 " + std::string(c.request + 3, 8) + " 00 00 00 00"});
    EXPECT_EQ(bench.Value(c.address), c.value);
  }
  Bench bench;  // segmented, size not indicated
  bench.Play("> 20 00 20 00 < 60 00 20 00 > 0B 41 42 < 20");
  EXPECT_EQ(bench.Value(kText), (Bytes{'A', 'B'}));
}

TEST(SdoServer, RefusesWithTheCodeOfCiA301) {
  struct Case {
    const char* what;
    const char* script;
  };
  const Case cases[] = {
      {"no object, upload", "> 40 00 30 00 < 80 00 30 00 00 00 02 06"},
      {"no object, download", "> 2F 00 30 01 12 < 80 00 30 01 00 00 02 06"},
      {"no object, block upload", "> A4 00 30 00 7F < 80 00 30 00 00 00 02 06"},
      {"no object, block download", "> C6 00 30 00 07 < 80 00 30 00 00 00 02 06"},
      {"no sub-index", "> 40 18 10 05 < 80 18 10 05 11 00 09 06"},
      {"write-only", "> 40 03 20 00 < 80 03 20 00 01 00 01 06"},
      {"read-only", "> 2F 00 60 01 12 < 80 00 60 01 02 00 01 06"},
      {"constant", "> 23 00 10 00 12 < 80 00 10 00 02 00 01 06"},
      {"read-only, segmented", "> 21 08 10 00 07 < 80 08 10 00 02 00 01 06"},
      {"too long", "> 2B 07 20 00 12 < 80 07 20 00 12 00 07 06"},
      {"too short", "> 2F 04 20 00 12 < 80 04 20 00 13 00 07 06"},
      {"too long, segmented", "> 21 00 20 00 41 < 80 00 20 00 12 00 07 06"},
      {"more than memory has", "> 21 02 20 00 FF FF FF FF < 80 02 20 00 12 00 07 06"},
      {"nothing for a number", "> 21 07 20 00 00 < 80 07 20 00 13 00 07 06"},
      {"eight bytes in four", "> 22 05 20 00 01 < 80 05 20 00 13 00 07 06"},
      {"value too high", "> 2B 04 20 00 65 00 < 80 04 20 00 31 00 09 06"},
      {"value too low", "> 2B 04 20 00 9B FF < 80 04 20 00 32 00 09 06"},
      {"real too high", "> 23 06 20 00 01 00 80 3F < 80 06 20 00 31 00 09 06"},
      {"value too high, in a segment", "> 21 04 20 00 02 < 60 04 20 00 > 0B 65 00 < 80 04 20 00 31 00 09 06"},
      {"history: nothing recorded", "> 40 03 10 01 < 80 03 10 01 24 00 00 08"},
      {"history: only 0", "> 2F 03 10 00 01 < 80 03 10 00 30 00 09 06"},
      {"unknown command", "> E0 < 80 00 00 00 01 00 04 05"},
      {"segment out of the blue", "> 00 01 < 80 00 00 00 01 00 04 05"},
      {"end of a block out of the blue", "> A1 < 80 00 00 00 01 00 04 05"},
      {"more than announced", "> 21 00 20 00 05 < 60 00 20 00 > 00 < 80 00 20 00 12 00 07 06"},
      {"less than announced", "> 21 00 20 00 05 < 60 00 20 00 > 07 < 80 00 20 00 13 00 07 06"},
      {"download toggle", "> 21 00 20 00 08 < 60 00 20 00 > 10 < 80 00 20 00 00 00 03 05"},
      {"download toggle repeated", "> 21 00 20 00 0F < 60 00 20 00 > 00 < 20 > 00 < 80 00 20 00 00 00 03 05"},
      {"upload toggle", "> 40 00 20 00 < 41 00 20 00 25 > 70 < 80 00 20 00 00 00 03 05"},
      {"download segment within an upload", "> 40 00 20 00 < 41 00 20 00 25 > 00 < 80 00 20 00 01 00 04 05"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Bench bench;
    bench.Play(c.script);
    bench.Play("> 40 00 10 00 < 43 00 10 00 91 01 0F 00");  // and it goes on
    EXPECT_EQ(Hex(bench.Value({0x2004, 0})), "00 00");
    EXPECT_EQ(bench.Value(kText).size(), 0x25u);
  }
}

TEST(SdoServer, ALeftTransferTimesOut) {
  const char* requests[] = {"40 00 20 00", "21 00 20 00 08", "A4 00 20 00 7F", "C6 00 20 00 08"};
  for (const char* request : requests) {
    SCOPED_TRACE(request);
    Bench bench;
    bench.Request(request);
    bench.Sent();
    bench.RunFor(2999ms);
    EXPECT_TRUE(bench.sent.empty());
    bench.RunFor(1ms);
    bench.Play("< 80 00 20 00 00 00 04 05");
    EXPECT_EQ(bench.device.NextDeadline(), kNever);
  }
}

TEST(SdoServer, AFrameInTimeKeepsATransferAlive) {
  Bench bench;
  bench.Play("> 40 00 20 00 < 41 00 20 00 25");
  for (const char* request : {"60", "70", "60"}) {
    bench.RunFor(2900ms);
    bench.Request(request);
    EXPECT_EQ(bench.Sent().size(), 1u);
  }
}

TEST(SdoServer, AnAbortOrANewRequestEndsATransfer) {
  Bench bench;
  bench.Play("> 21 00 20 00 08 < 60 00 20 00 > 80 00 20 00 00 00 04 05");
  EXPECT_EQ(bench.device.NextDeadline(), kNever);
  bench.Play("> 21 00 20 00 08 < 60 00 20 00 > 00 01 02 03 04 05 06 07 < 20");
  bench.Play("> 21 00 20 00 01 < 60 00 20 00 > 0D 41 < 20");
  EXPECT_EQ(bench.Value(kText), Bytes{'A'});
}

TEST(SdoServer, IgnoresWhatIsNoRequest) {
  Bench bench;
  for (const char* frame : {"605 40 00 10 00", "605 40 00 10 00 00 00 00", "00000605 40 00 10 00 00 00 00 00",
                            "605 R", "606 40 00 10 00 00 00 00 00", "585 40 00 10 00 00 00 00 00"}) {
    bench.Feed(frame);
    EXPECT_TRUE(bench.sent.empty()) << frame;
  }
}

// What a client makes of a server that misbehaves is in loopback_test.cpp.
TEST(Misbehaviour, NoLateAnswerLeavesAStoppedDevice) {
  Bench bench;
  bench.device.Faults().answerDelay = 50ms;
  bench.Request("40 00 10 00");
  bench.Feed("000 02 05");
  bench.RunFor(1s);
  EXPECT_TRUE(bench.sent.empty());
}

TEST(Misbehaviour, SilenceConcernsSdoOnly) {
  Bench bench;
  bench.device.Faults().silent = true;
  bench.Play("> 40 00 10 00 > A4 00 10 00 7F");
  bench.Feed("705 R");
  EXPECT_EQ(bench.Sent(), std::vector<std::string>{"705 7F"});
  EXPECT_EQ(bench.device.NextDeadline(), kNever);
}

}  // namespace
