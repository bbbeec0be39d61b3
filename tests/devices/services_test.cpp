// NMT, error control and EMCY.

#include "tests/devices/bench.h"

namespace {

using namespace NDevicesTest;
using namespace NDevices;
using Texts = std::vector<std::string>;

constexpr ObjectAddress kHeartbeatTime = {0x1017, 0};

TEST(Nmt, NothingComesBeforePowerOnAndBootUpAfterIt) {
  Bench bench;
  bench.Download(kHeartbeatTime, 100, 2);
  bench.device.PowerOff();
  EXPECT_EQ(bench.device.State(), NmtState::Initialising);
  for (const char* frame : {"000 01 00", "000 81 00", "705 R", "080", "605 40 00 10 00 00 00 00 00"})
    bench.Feed(frame);
  bench.device.RaiseError({0x1000, 0, {}});
  bench.RunFor(1s);
  EXPECT_TRUE(bench.sent.empty());
  bench.device.PowerOn(bench.now);
  EXPECT_EQ(bench.Sent(), Texts{"705 00"});
  EXPECT_EQ(bench.device.State(), NmtState::PreOperational);
  EXPECT_EQ(bench.Number(kHeartbeatTime), 0u);
}

TEST(Nmt, CommandsLeadToTheirStates) {
  struct Case {
    const char* command;
    NmtState state;
  };
  const Case cases[] = {
      {"000 01 00", NmtState::Operational},
      {"000 01 05", NmtState::Operational},
      {"000 02 05", NmtState::Stopped},
      {"000 80 05", NmtState::PreOperational},
      {"000 01 06", NmtState::PreOperational},  // another node
      {"000 03 05", NmtState::PreOperational},  // no command
      {"000 01", NmtState::PreOperational},
      {"000 01 05 00", NmtState::PreOperational},
      {"00000000 01 05", NmtState::PreOperational},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.command);
    Bench bench;
    bench.Feed(c.command);
    EXPECT_EQ(bench.device.State(), c.state);
    bench.sent.clear();
    bench.Feed("705 R");
    EXPECT_EQ(bench.Sent(), Texts{"705 " + Hex({static_cast<std::uint8_t>(c.state)})});
  }
}

TEST(Nmt, ServicesWorkInTheirStatesOnly) {
  Bench bench;
  const auto answers = [&bench](const char* frame) {
    bench.sent.clear();
    bench.Feed(frame);
    return !bench.Sent().empty();
  };
  struct Case {
    const char* command;
    bool sdo, pdo;
  };
  for (const Case& c :
       {Case{"000 80 00", true, false}, {"000 01 00", true, true}, {"000 02 00", false, false}}) {
    SCOPED_TRACE(c.command);
    bench.Feed(c.command);
    EXPECT_EQ(answers("605 40 00 10 00 00 00 00 00"), c.sdo);
    EXPECT_EQ(answers("185 R"), c.pdo);
    EXPECT_EQ(bench.device.RaiseError({0x1000, 0, {}}), true);
    EXPECT_EQ(!bench.Sent().empty(), c.sdo);
    EXPECT_EQ(bench.Number({0x1001, 0}), 1u);
    bench.device.ClearError(0x1000);
  }
}

TEST(Nmt, ATransferDoesNotOutliveStop) {
  Bench bench;
  bench.Play("> 40 00 20 00 < 41 00 20 00 25");
  bench.Feed("000 02 00");
  bench.Feed("000 80 00");
  bench.Play("> 60 < 80 00 00 00 01 00 04 05");
}

TEST(Nmt, ResetsGiveTheirObjectsTheFirstValues) {
  struct Case {
    const char* command;
    std::uint32_t heartbeat, process;
  };
  for (const Case& c : {Case{"000 81 05", 0, 0}, {"000 82 05", 0, 7}}) {
    SCOPED_TRACE(c.command);
    Bench bench;
    bench.Start();
    bench.Download(kHeartbeatTime, 100, 2);
    bench.Download({0x2007, 0}, 7, 1);
    bench.device.RaiseError({0x1000, 0, {}});
    bench.sent.clear();
    bench.Feed(c.command);
    EXPECT_EQ(bench.Sent(), Texts{"705 00"});
    EXPECT_EQ(bench.device.State(), NmtState::PreOperational);
    EXPECT_EQ(bench.Number(kHeartbeatTime), c.heartbeat);
    EXPECT_EQ(bench.Number({0x2007, 0}), c.process);
    EXPECT_EQ(bench.Number({0x1003, 0}), 0u);
    EXPECT_EQ(bench.Number({0x1001, 0}), c.process == 7 ? 1u : 0u);  // an error of the process stays
    bench.RunFor(1s);
    EXPECT_TRUE(bench.sent.empty());
  }
}

TEST(Heartbeat, KeepsItsPeriod) {
  Bench bench;
  const Time start = bench.now;
  bench.Download(kHeartbeatTime, 100, 2);
  bench.RunFor(250ms);
  bench.Start();
  bench.sent.clear();
  bench.RunFor(100ms);
  bench.Feed("000 02 00");
  bench.RunFor(60ms);
  EXPECT_EQ(bench.SentSince(start), (Texts{"300: 705 05", "400: 705 04"}));
  bench.now += 230ms;  // the owner is late: what was missed is left out, the rhythm stays
  bench.device.OnDeadline(bench.now);
  bench.RunFor(60ms);
  EXPECT_EQ(bench.SentSince(start), (Texts{"640: 705 04", "700: 705 04"}));
}

TEST(Heartbeat, BeginsAnewWhenItsTimeIsWritten) {
  Bench bench;
  const Time start = bench.now;
  bench.Download(kHeartbeatTime, 100, 2);
  bench.RunFor(90ms);
  bench.Download(kHeartbeatTime, 50, 2);
  bench.RunFor(100ms);
  bench.Download(kHeartbeatTime, 0, 2);
  bench.RunFor(1s);
  EXPECT_EQ(bench.SentSince(start), (Texts{"140: 705 7F", "190: 705 7F"}));
}

TEST(Guarding, AnswersAlternate) {
  Bench bench;
  for (const char* answer : {"705 7F", "705 FF", "705 7F", "705 FF", "705 7F"}) {
    bench.Feed("705 R");
    EXPECT_EQ(bench.Sent(), Texts{answer});
  }
  bench.Feed("000 82 05");
  bench.sent.clear();
  bench.Feed("705 R");
  EXPECT_EQ(bench.Sent(), Texts{"705 7F"});  // from the beginning
  bench.Feed("706 R");
  bench.Download(kHeartbeatTime, 1000, 2);
  bench.Feed("705 R");
  EXPECT_TRUE(bench.sent.empty());  // heartbeat has taken its place
}

TEST(Guarding, TheNodeMissesItsMaster) {
  Bench bench;
  bench.Start();
  bench.Download({0x100C, 0}, 100, 2);
  bench.Download({0x100D, 0}, 3, 1);
  bench.sent.clear();
  bench.RunFor(1s);
  EXPECT_TRUE(bench.sent.empty());  // not before the first guarding
  const Time start = bench.now;
  bench.Feed("705 R");
  bench.RunFor(299ms);
  bench.Feed("705 R");
  bench.RunFor(2s);
  EXPECT_EQ(bench.SentSince(start), (Texts{"0: 705 05", "299: 705 85", "599: 085 30 81 11 00 00 00 00 00"}));
  EXPECT_EQ(bench.device.State(), NmtState::PreOperational);
  bench.Feed("705 R");
  EXPECT_EQ(bench.Sent(), (Texts{"705 7F", "085 00 00 00 00 00 00 00 00"}));
}

TEST(HeartbeatConsumer, MissesTheNodesThatItHasHeard) {
  Bench bench;
  bench.Download({0x1016, 1}, 0x00060064, 4);  // node 6, 100 ms
  bench.Download({0x1016, 2}, 0x00070032, 4);  // node 7, 50 ms
  bench.Start();
  bench.sent.clear();
  const Time start = bench.now;
  bench.RunFor(1s);
  EXPECT_TRUE(bench.sent.empty());
  bench.Feed("706 05");
  bench.RunFor(99ms);
  bench.Feed("706 05");
  bench.RunFor(200ms);
  EXPECT_EQ(bench.device.State(), NmtState::PreOperational);
  bench.Feed("706 05");
  EXPECT_EQ(bench.SentSince(start),
            (Texts{"1199: 085 30 81 11 06 00 00 00 00", "1299: 085 00 00 00 00 00 00 00 00"}));
}

TEST(HeartbeatConsumer, TheObjectSaysWhatTheLossMeans) {
  const std::pair<std::uint32_t, NmtState> cases[] = {
      {0, NmtState::PreOperational}, {1, NmtState::Operational}, {2, NmtState::Stopped}};
  for (const auto& [behaviour, state] : cases) {
    Bench bench;
    bench.Download({0x1016, 1}, 0x00060064, 4);
    bench.Download({0x1029, 1}, behaviour, 1);
    bench.Start();
    bench.Feed("706 05");
    bench.RunFor(1s);
    EXPECT_EQ(bench.device.State(), state) << behaviour;
  }
}

TEST(Emergency, MessagesRegisterAndHistory) {
  Bench bench;
  EXPECT_TRUE(bench.device.RaiseError({0x2310, 0x02, {1, 2, 3, 4, 5}}));
  EXPECT_FALSE(bench.device.RaiseError({0x2310, 0x02, {}}));  // it is there already
  EXPECT_TRUE(bench.device.RaiseError({0x4210, 0x08, {}}));
  EXPECT_EQ(bench.Sent(), (Texts{"085 10 23 03 01 02 03 04 05", "085 10 42 0B 00 00 00 00 00"}));
  bench.Play("> 40 03 10 00 < 4F 03 10 00 02");
  bench.Play("> 40 03 10 01 < 43 03 10 01 10 42 00 00");
  bench.Play("> 40 03 10 02 < 43 03 10 02 10 23 01 02");
  bench.Play("> 40 03 10 03 < 80 03 10 03 24 00 00 08");
  EXPECT_TRUE(bench.device.ClearError(0x2310));
  EXPECT_FALSE(bench.device.ClearError(0x2310));
  EXPECT_TRUE(bench.device.ClearError(0x4210));
  EXPECT_EQ(bench.Sent(), (Texts{"085 00 00 09 00 00 00 00 00", "085 00 00 00 00 00 00 00 00"}));
  bench.Download({0x1003, 0}, 0, 1);
  bench.Play("> 40 03 10 01 < 80 03 10 01 24 00 00 08");
}

TEST(Emergency, TheHistoryKeepsTheLatest) {
  Bench bench;
  for (std::uint16_t code = 1; code <= 20; ++code) bench.device.RaiseError({code, 0, {}});
  EXPECT_EQ(bench.Number({0x1003, 0}), 8u);
  EXPECT_EQ(bench.Number({0x1003, 1}), 20u);
  EXPECT_EQ(bench.Number({0x1003, 8}), 13u);
}

TEST(Emergency, GoesWhereItsCobIdSays) {
  Bench bench;
  bench.Download({0x1014, 0}, 0x90, 4, 0x06090030);  // not while it is valid
  bench.Download({0x1014, 0}, 0x80000085, 4);
  bench.device.RaiseError({0x1000, 0, {}});
  EXPECT_TRUE(bench.sent.empty());
  bench.Download({0x1014, 0}, 0x20012345, 4);
  bench.device.ClearError(0x1000);
  EXPECT_EQ(bench.Sent(), Texts{"00012345 00 00 00 00 00 00 00 00"});
}

}  // namespace
