#include "tests/devices/bench.h"

namespace {

using namespace NDevicesTest;
using namespace NDevices;
using Texts = std::vector<std::string>;

constexpr ObjectAddress kInputs = {0x6000, 1};

class Pdos : public testing::Test {
 protected:
  // The first transmit PDO alone, with its mapping of two digital inputs.
  void Configure(std::uint32_t type, std::uint32_t inhibit = 0, std::uint32_t event_ms = 0) {
    bench.Download({0x1801, 1}, 0x80000285, 4);
    bench.Download({0x1800, 1}, 0x80000185, 4);
    bench.Download({0x1800, 2}, type, 1);
    bench.Download({0x1800, 3}, inhibit, 2);
    bench.Download({0x1800, 5}, event_ms, 2);
    bench.Download({0x1800, 1}, 0x185, 4);
  }
  Texts SentOn(const char* frame) {
    bench.sent.clear();
    bench.Feed(frame);
    return bench.Sent();
  }

  Bench bench;
};

TEST_F(Pdos, EventDrivenOnesLeaveAtStartAndOnChange) {
  bench.SetNumber({0x6401, 2}, 0x1234);
  EXPECT_TRUE(bench.Sent().empty());
  bench.Start();
  EXPECT_EQ(bench.Sent(), (Texts{"185 00 00", "285 00 00 34 12 00 00 00 00"}));
  bench.SetNumber(kInputs, 0xA5);
  bench.SetNumber(kInputs, 0xA5);  // no change
  bench.SetNumber({0x6000, 2}, 1);
  EXPECT_EQ(bench.Sent(), (Texts{"185 A5 00", "185 A5 01"}));
  bench.Feed("000 80 00");
  bench.SetNumber(kInputs, 0);
  EXPECT_TRUE(bench.Sent().empty());
}

TEST_F(Pdos, CyclicOnesFollowSync) {
  for (const std::uint32_t type : {1u, 2u, 5u, 240u}) {
    SCOPED_TRACE(type);
    Configure(type);
    bench.Feed("000 80 00");
    bench.Start();
    EXPECT_TRUE(bench.Sent().empty());
    for (std::uint32_t count = 1; count <= 2 * type; ++count) {
      const bool due = count % type == 0;
      EXPECT_EQ(SentOn(count % 2 == 0 ? "080" : "080 07"), due ? Texts{"185 00 00"} : Texts{}) << count;
    }
  }
  bench.Feed("000 80 00");
  EXPECT_EQ(SentOn("080"), Texts{});
}

TEST_F(Pdos, AcyclicOnesFollowSyncAfterAChange) {
  Configure(0);
  bench.Start();
  EXPECT_EQ(bench.Sent(), Texts{});
  EXPECT_EQ(SentOn("080"), Texts{"185 00 00"});  // the start is an event
  EXPECT_EQ(SentOn("080"), Texts{});
  bench.SetNumber(kInputs, 1);
  bench.SetNumber(kInputs, 2);
  EXPECT_EQ(bench.Sent(), Texts{});
  EXPECT_EQ(SentOn("080"), Texts{"185 02 00"});
  EXPECT_EQ(SentOn("080"), Texts{});
}

TEST_F(Pdos, EventTimer) {
  Configure(254, 0, 20);
  const Time start = bench.now;
  bench.Start();
  bench.RunFor(45ms);
  EXPECT_EQ(bench.SentSince(start), (Texts{"0: 185 00 00", "20: 185 00 00", "40: 185 00 00"}));
  bench.SetNumber(kInputs, 1);  // an event of its own: the timer begins anew
  bench.RunFor(30ms);
  EXPECT_EQ(bench.SentSince(start), (Texts{"45: 185 01 00", "65: 185 01 00"}));
  bench.now += 17ms;  // late for it: the rhythm stays
  bench.device.OnDeadline(bench.now);
  bench.RunFor(20ms);
  EXPECT_EQ(bench.SentSince(start), (Texts{"92: 185 01 00", "105: 185 01 00"}));
}

TEST_F(Pdos, InhibitTimeHoldsEventsBack) {
  Configure(255, 100);  // 10 ms
  const Time start = bench.now;
  bench.Start();
  bench.RunFor(3ms);
  bench.SetNumber(kInputs, 1);
  bench.RunFor(3ms);
  bench.SetNumber(kInputs, 2);
  bench.RunFor(50ms);
  EXPECT_EQ(bench.SentSince(start), (Texts{"0: 185 00 00", "10: 185 02 00"}));
}

TEST_F(Pdos, RemoteFrames) {
  Configure(253);
  bench.Start();
  bench.SetNumber(kInputs, 1);
  EXPECT_EQ(bench.Sent(), Texts{});
  EXPECT_EQ(SentOn("185 R"), Texts{"185 01 00"});
  bench.Download({0x1800, 1}, 0x80000185, 4);
  bench.Download({0x1800, 1}, 0x40000185, 4);  // no remote frames
  EXPECT_EQ(SentOn("185 R"), Texts{});
}

TEST_F(Pdos, ReceivedOnesWriteTheirObjects) {
  bench.Start();
  EXPECT_EQ(SentOn("205 AA 55"), Texts{});
  EXPECT_EQ(bench.Number({0x6200, 1}), 0xAAu);
  EXPECT_EQ(bench.Number({0x6200, 2}), 0x55u);
  bench.Feed("305 01 00 02 00 03 00 04 80");
  EXPECT_EQ(bench.Number({0x6411, 4}), 0x8004u);
  bench.Feed("205 01 02 03 04");  // what is too much is left alone
  EXPECT_EQ(bench.Number({0x6200, 2}), 2u);
  EXPECT_EQ(SentOn("205 07"), Texts{"085 10 82 11 00 00 00 00 00"});
  EXPECT_EQ(SentOn("205 07"), Texts{});
  EXPECT_EQ(bench.Number({0x6200, 1}), 1u);
  EXPECT_EQ(SentOn("205 01 02"), Texts{"085 00 00 00 00 00 00 00 00"});
  bench.Feed("000 80 00");
  bench.Feed("205 77 77");
  EXPECT_EQ(bench.Number({0x6200, 1}), 1u);
}

TEST_F(Pdos, ReceivedOnesWaitForSync) {
  bench.Download({0x1400, 2}, 1, 1);
  bench.Start();
  bench.Feed("205 AA 55");
  bench.Feed("205 AB 56");
  EXPECT_EQ(bench.Number({0x6200, 1}), 0u);
  bench.Feed("080");
  EXPECT_EQ(bench.Number({0x6200, 1}), 0xABu);
  bench.Feed("205 01 01");
  bench.Feed("000 80 00");
  bench.Start();
  bench.Feed("080");
  EXPECT_EQ(bench.Number({0x6200, 1}), 0xABu);
}

TEST_F(Pdos, AreMappedAnew) {
  bench.Download({0x1801, 1}, 0x80000285, 4);
  bench.Download({0x1A00, 0}, 0, 1, 0x06010000);  // it is valid
  bench.Download({0x1800, 1}, 0x80000185, 4);
  bench.Download({0x1A00, 1}, 0x60000208, 4, 0x06010000);  // it has entries in force
  bench.Download({0x1A00, 0}, 0, 1);
  bench.Download({0x1A00, 1}, 0x60000208, 4);
  bench.Download({0x1A00, 2}, 0x20050040, 4);
  bench.Download({0x1A00, 0}, 2, 1, 0x06040042);  // 72 bits
  bench.Download({0x1A00, 0}, 9, 1, 0x06040042);
  bench.Download({0x1A00, 2}, 0x20070008, 4);
  bench.Download({0x1A00, 0}, 2, 1);
  bench.Download({0x1800, 1}, 0x20000185, 4);
  bench.Start();
  bench.Sent();
  bench.SetNumber({0x6000, 2}, 0x11);
  bench.Download({0x2007, 0}, 0x22, 1);
  EXPECT_EQ(bench.Sent(), (Texts{"00000185 11 00", "00000185 11 22"}));
}

TEST_F(Pdos, RefuseWhatCannotBeMapped) {
  const std::pair<std::uint32_t, std::uint32_t> cases[] = {
      {0x30000008, 0x06020000},  // no such object
      {0x60000308, 0x06090011},  // no such sub-index
      {0x20000008, 0x06040041},  // a string
      {0x60000110, 0x06040041},  // another length
      {0x10170010, 0x06040041},  // not mappable
      {0x00050008, 0x06020000},  // places that nobody takes are for receiving
  };
  bench.Download({0x1800, 1}, 0x80000185, 4);
  bench.Download({0x1A00, 0}, 0, 1);
  for (const auto& [mapping, code] : cases) bench.Download({0x1A00, 1}, mapping, 4, code);
  bench.Download({0x1400, 1}, 0x80000205, 4);
  bench.Download({0x1600, 0}, 0, 1);
  bench.Download({0x1600, 1}, 0x60000108, 4, 0x06040041);  // an input
  bench.Download({0x1600, 1}, 0x00050008, 4);
  bench.Download({0x1600, 2}, 0x20070008, 4);
  bench.Download({0x1600, 0}, 2, 1);
  bench.Download({0x1400, 1}, 0x205, 4);
  bench.Start();
  bench.Feed("205 11 22");
  EXPECT_EQ(bench.Number({0x2007, 0}), 0x22u);
}

TEST_F(Pdos, RefuseParametersThatMeanNothing) {
  for (const std::uint32_t type : {241u, 251u, 252u}) bench.Download({0x1800, 2}, type, 1, 0x06090030);
  bench.Download({0x1400, 2}, 253, 1, 0x06090030);
  bench.Download({0x1800, 1}, 0x186, 4, 0x06090030);  // another identifier while it is valid
  bench.Download({0x1800, 3}, 1, 2, 0x06090030);
  bench.Download({0x1005, 0}, 0x40000080, 4, 0x06090030);  // no SYNC of its own
}

}  // namespace
