// On real interfaces of the kernel: tests/buses/socketcan_vm runs it in a virtual machine where the system
// has none. vcan0 is used, vcan1 is made and removed.
#include <gmock/gmock.h>

#include <linux/can.h>
#include <linux/can/error.h>
#include <net/if.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <functional>

#include "tests/buses/real_time.h"

namespace {

using namespace std::chrono_literals;
using NTest::Refusal;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

int Shell(const std::string& command) { return std::system(command.c_str()); }

class SocketCan : public NTest::RealTime {
 protected:
  void SetUp() override {
    if (if_nametoindex("vcan0") == 0) GTEST_SKIP() << "there is no vcan0; see tests/buses/socketcan_vm";
    ASSERT_EQ(Shell("ip link set vcan0 up"), 0);
  }

  std::unique_ptr<NRuntime::CanAdapter> Opened(const std::string& word, NTest::Listener& listener) {
    auto adapter = factory.Make(word);
    adapter->Open(listener);
    return adapter;
  }
};

TEST_F(SocketCan, FramesOfEveryKindAreSeenOnceOnBothSides) {
  const auto sender = Opened("socketcan:vcan0", one), other = Opened("socketcan:vcan0", two);
  const NSdk::CanFrame frames[] = {{0x123, {1, 2, 3}, 3},
                                   {0x7FF, {}, 0},
                                   {0x1ABCDEF, {1, 2, 3, 4, 5, 6, 7, 8}, 8 | NSdk::kFrameExtended},
                                   {0x705, {}, 1 | NSdk::kFrameRemote},
                                   {5, {}, 8 | NSdk::kFrameRemote | NSdk::kFrameExtended}};
  const auto start = loop.Now();
  for (const NSdk::CanFrame& frame : frames) sender->Send(frame);
  EXPECT_THAT(one.sent, IsEmpty()) << "before the interface has confirmed it";
  EXPECT_TRUE(RunUntil([&] { return two.received.size() == 5 && one.sent.size() == 5; }));
  RunUntil([] { return false; }, 50ms);
  EXPECT_THAT(one.sent,
              ElementsAre("123#010203", "7FF#", "01ABCDEF#0102030405060708", "705#R1", "00000005#R8"));
  EXPECT_EQ(two.received, one.sent);
  EXPECT_THAT(one.received, IsEmpty());
  for (const auto time : two.times) {
    EXPECT_GE(time, start - 1ms);  // the two clocks are read one after the other
    EXPECT_LE(time, loop.Now());
  }
  EXPECT_THAT(one.troubles, IsEmpty());
}

TEST_F(SocketCan, TimesAreThoseOfTheKernel) {
  const auto sender = Opened("socketcan:vcan0", one), other = Opened("socketcan:vcan0", two);
  // The kernel begins to take times a moment after it was asked to.
  RunUntil([] { return false; }, 200ms);
  const auto start = loop.Now();
  sender->Send({0x123, {}, 0});
  usleep(200000);  // the loop is busy elsewhere
  EXPECT_TRUE(RunUntil([&] { return two.received.size() == 1; }));
  EXPECT_LT(two.times[0], start + 100ms);
}

TEST_F(SocketCan, WhatCannotBeUsedIsNamedWithTheRemedy) {
  const std::pair<const char*, const char*> cases[] = {
      {"socketcan:can7", "no interface can7; connect it, then ip link set can7 up type can bitrate 500000"},
      {"socketcan:vcan7", "ip link add dev vcan7 type vcan && ip link set vcan7 up"},
      {"socketcan:lo", "lo is no CAN interface"},
  };
  for (const auto& [word, fault] : cases) {
    const auto adapter = factory.Make(word);
    EXPECT_THAT(Refusal([&] { adapter->Open(one); }), HasSubstr(fault));
  }
  ASSERT_EQ(Shell("ip link set vcan0 down"), 0);
  const auto down = factory.Make("socketcan:vcan0");
  EXPECT_THAT(Refusal([&] { down->Open(one); }), HasSubstr("vcan0 is down; ip link set vcan0 up"));
}

TEST_F(SocketCan, AnInterfaceThatGoesAwayIsUsedAgainWhenItIsBack) {
  ASSERT_EQ(Shell("ip link add dev vcan1 type vcan && ip link set vcan1 up"), 0);
  const auto adapter = Opened("socketcan:vcan1", one);
  const std::pair<const char*, const char*> ways[] = {
      {"ip link set vcan1 down", "ip link set vcan1 up"},
      {"ip link del vcan1", "ip link add dev vcan1 type vcan && ip link set vcan1 up"}};
  for (const auto& [away, back] : ways) {
    SCOPED_TRACE(away);
    one.troubles.clear();
    one.sent.clear();
    ASSERT_EQ(Shell(away), 0);
    EXPECT_TRUE(RunUntil([&] { return !one.troubles.empty(); }));
    adapter->Send({0x123, {}, 0});
    adapter->Send({0x124, {}, 0});
    ASSERT_EQ(Shell(back), 0);
    EXPECT_TRUE(RunUntil([&] { return one.troubles.size() == 2; }));
    EXPECT_THAT(one.troubles,
                ElementsAre(testing::AnyOf(HasSubstr("vcan1 is down"), HasSubstr("vcan1 is gone")),
                            HasSubstr("vcan1 is back; 2 frames given up")));
    adapter->Send({0x125, {}, 0});
    EXPECT_TRUE(RunUntil([&] { return one.sent.size() == 1; }));
  }
  // Now the first to notice is a frame.
  one.troubles.clear();
  ASSERT_EQ(Shell("ip link set vcan1 down"), 0);
  adapter->Send({0x126, {}, 0});
  EXPECT_THAT(one.troubles, ElementsAre(HasSubstr("vcan1 is down")));
  ASSERT_EQ(Shell("ip link set vcan1 up"), 0);
  EXPECT_TRUE(RunUntil([&] { return one.troubles.size() == 2; }));
  EXPECT_THAT(one.troubles[1], HasSubstr("1 frame given up"));
  Shell("ip link del vcan1");
}

// A queue of five frames that waits before each: ENOBUFS, over and over.
TEST_F(SocketCan, AFullInterfaceKeepsTheOrderAndItsBoundsAreTold) {
  if (Shell("/sbin/tc qdisc add dev vcan0 root netem delay 2ms limit 5") != 0) GTEST_SKIP() << "no netem";
  const auto sender = Opened("socketcan:vcan0", one), other = Opened("socketcan:vcan0", two);
  std::vector<std::string> expected;
  for (std::uint32_t number = 0; number < 300; ++number) {
    const NSdk::CanFrame frame = {
        0x100, {static_cast<std::uint8_t>(number), static_cast<std::uint8_t>(number >> 8)}, 2};
    sender->Send(frame);
    expected.push_back(NBuses::FrameText(frame));
  }
  EXPECT_TRUE(
      RunUntil([&] { return one.sent.size() == expected.size() && two.received.size() == expected.size(); }));
  EXPECT_EQ(one.sent, expected);
  EXPECT_EQ(two.received, expected);
  EXPECT_THAT(one.troubles, IsEmpty());
  for (int number = 0; number < 2500; ++number) sender->Send({0x101, {}, 0});
  EXPECT_THAT(one.troubles, ElementsAre(HasSubstr("does not get rid of its frames")));
  EXPECT_EQ(Shell("/sbin/tc qdisc del dev vcan0 root"), 0);
  EXPECT_TRUE(RunUntil([&] { return one.troubles.size() == 2; }, 30s));
  EXPECT_THAT(one.troubles[1], HasSubstr(" frames given up in all"));
}

// The kernel hands out error frames that a program sends as if the interface had made them.
TEST_F(SocketCan, ErrorFramesAreToldInWords) {
  const auto adapter = Opened("socketcan:vcan0", one);
  const int handle = socket(PF_CAN, SOCK_RAW, CAN_RAW);
  sockaddr_can address = {};
  address.can_family = AF_CAN;
  address.can_ifindex = static_cast<int>(if_nametoindex("vcan0"));
  ASSERT_EQ(bind(handle, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  for (const canid_t classes : {0x40U, 0x20U, 0x20U, 0x20U, 0x100U}) {
    can_frame frame = {};
    frame.can_id = CAN_ERR_FLAG | classes;
    frame.can_dlc = CAN_ERR_DLC;
    ASSERT_EQ(write(handle, &frame, sizeof frame), static_cast<ssize_t>(sizeof frame));
  }
  close(handle);
  EXPECT_TRUE(RunUntil([&] { return one.troubles.size() == 3; }));
  EXPECT_THAT(one.troubles,
              ElementsAre(HasSubstr("vcan0: bus-off: the controller has left the bus; ip link set vcan0"),
                          HasSubstr("vcan0: nobody acknowledges the frames"),
                          HasSubstr("was restarted (2 error frames since the last message)")));
  EXPECT_THAT(one.received, IsEmpty());
}

TEST_F(SocketCan, FramesThatFindNoRoomAreCounted) {
  const auto slow = Opened("socketcan:vcan0", one), sender = Opened("socketcan:vcan0", two);
  // The loop does not run meanwhile; the buffer of each socket takes some tens of thousands.
  const NSdk::CanFrame frame = {0x123, {}, 8};
  for (int number = 0; number < 100000; ++number) sender->Send(frame);
  EXPECT_TRUE(
      RunUntil([&] { return two.received.size() + two.sent.size() > 1000 && !one.received.empty(); }));
  RunUntil([] { return false; }, 500ms);
  sender->Send(frame);
  EXPECT_TRUE(RunUntil([&] { return !one.troubles.empty(); }));
  EXPECT_THAT(one.troubles.back(), HasSubstr(" lost; more came than were read"));
}

}  // namespace
