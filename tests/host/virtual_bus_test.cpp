// Virtual buses with a bit rate, on a clock of the test's own.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "host/buses/bus_factory.h"
#include "host/buses/frame_time.h"
#include "host/buses/virtual_bus.h"
#include "tests/host/virtual_loop.h"

namespace {

using NRuntime::Time;
using NSdk::CanFrame;
using NSdk::kFrameExtended;
using NSdk::kFrameRemote;
using std::chrono::microseconds;

// The third column is checked by hand against the frame: bits before stuffing, stuff bits, end of the frame.
TEST(FrameTime, BitsAreThoseOfTheRealBitStream) {
  const std::pair<CanFrame, std::uint32_t> cases[] = {
      {{0, {}, 0}, 34 + 6 + 10},                                      // zeros and a CRC of 0
      {{0, {}, 1 | kFrameRemote}, 34 + 3 + 10},                       // CRC 365C
      {{0x7FF, {}, 0}, 34 + 3 + 10},                                  // CRC 272F
      {{0x605, {0, 1, 2, 3, 4, 5, 6, 7}, 8}, 98 + 10 + 10},           // CRC 133A
      {{0, {}, kFrameExtended}, 54 + 7 + 10},                         // CRC 4610
      {{0x1ABCDEF, {}, kFrameRemote | kFrameExtended}, 54 + 5 + 10},  // CRC 557F
      {{0x1FFFFFFF, {255, 255, 255, 255, 255, 255, 255, 255}, 8 | kFrameExtended}, 118 + 18 + 10},
  };
  for (const auto& [frame, bits] : cases) EXPECT_EQ(NBuses::FrameBits(frame), bits) << frame.identifier;
}

TEST(FrameTime, ArbitrationIsWonAsOnTheBus) {
  const CanFrame fromFirstToLast[] = {
      {0x080, {}, 0},
      {0x100, {}, 0},
      {0x100, {}, kFrameRemote},
      {0x100 << 18, {}, kFrameExtended},
      {0x100 << 18, {}, kFrameExtended | kFrameRemote},
      {(0x100 << 18) + 1, {}, kFrameExtended},
      {0x101, {}, 0},
      {0x1FFFFFFF, {}, kFrameExtended | kFrameRemote},
  };
  for (std::size_t i = 0; i + 1 < std::size(fromFirstToLast); ++i) {
    EXPECT_LT(NBuses::ArbitrationField(fromFirstToLast[i]), NBuses::ArbitrationField(fromFirstToLast[i + 1]));
  }
}

class TimedBus : public testing::Test {
 protected:
  // Writes what one port hears: "sent 080 at 50 us", into a list for all of them.
  struct Listener final : NRuntime::CanAdapterEvents {
    Listener(TimedBus& ownTest, std::string ownName)
        : test(ownTest), name(std::move(ownName)), port(ownTest.buses.Get("")) {
      port.Open(*this);
    }
    void OnReceived(const CanFrame& frame, Time time) override { Note(" got ", frame, time); }
    void OnSent(const CanFrame& frame, Time time) override {
      Note(" sent ", frame, time);
      if (whenSent) whenSent();
    }
    void OnTrouble(const std::string&) override { ++troubles; }
    void Note(const char* what, const CanFrame& frame, Time time) {
      const auto at = std::chrono::duration_cast<microseconds>(time - test.start).count();
      test.heard.push_back(name + what + std::to_string(frame.identifier) + " at " + std::to_string(at));
    }

    TimedBus& test;
    std::string name;
    int troubles = 0;
    std::function<void()> whenSent;
    NBuses::VirtualPort port;
  };

  // Of 50 bits for 0, of 48 for 0x80 and of 47 for 0x7FF.
  static CanFrame Frame(std::uint32_t identifier) { return {identifier, {}, 0}; }

  TimedBus() { bus->SetBitRate(1000000); }

  using Lines = std::vector<std::string>;
  NTest::VirtualLoop loop;
  NBuses::VirtualBuses buses{loop};
  std::shared_ptr<NBuses::VirtualBus> bus = buses.Get("");
  Time start = loop.Now();
  Lines heard;
  Listener a{*this, "a"}, b{*this, "b"};
};

TEST_F(TimedBus, FramesLeaveInTheOrderOfTheirPortAndOfArbitration) {
  a.port.Send(Frame(0x80));
  a.port.Send(Frame(0));  // does not overtake its own port's
  b.port.Send(Frame(0x7FF));
  b.port.Send(Frame(0x80));
  loop.RunFor(microseconds(47));
  EXPECT_EQ(heard, Lines());
  loop.RunFor(microseconds(500));
  EXPECT_EQ(heard,
            (Lines{"a sent 128 at 48", "b got 128 at 48", "a sent 0 at 101", "b got 0 at 101",
                   "b sent 2047 at 151", "a got 2047 at 151", "b sent 128 at 202", "a got 128 at 202"}));
}

TEST_F(TimedBus, WhatComesWhileTheBusIsTakenContendsWhenItIsFree) {
  a.port.Send(Frame(0x7FF));  // 47 bits; the bus is free after 50
  a.port.Send(Frame(0x7FF));
  loop.RunFor(microseconds(49));
  b.port.Send(Frame(0));
  loop.RunFor(microseconds(2));
  a.port.Send(Frame(0));
  loop.RunFor(microseconds(500));
  EXPECT_EQ(heard, (Lines{"a sent 2047 at 47", "b got 2047 at 47", "b sent 0 at 100", "a got 0 at 100",
                          "a sent 2047 at 150", "b got 2047 at 150", "a sent 0 at 203", "b got 0 at 203"}));
}

// Of equal frames the one that has waited longer leaves first, and then that of the port that has sent first.
TEST_F(TimedBus, EqualFramesTakeTurns) {
  b.port.Send(Frame(0));
  a.port.Send(Frame(0));
  b.port.Send(Frame(0));
  loop.RunFor(microseconds(500));
  EXPECT_EQ(heard, (Lines{"b sent 0 at 50", "a got 0 at 50", "b sent 0 at 103", "a got 0 at 103",
                          "a sent 0 at 156", "b got 0 at 156"}));
}

TEST_F(TimedBus, ALateLoopDoesNotShiftTheBus) {
  for (int i = 0; i < 3; ++i) a.port.Send(Frame(0));
  loop.Block(microseconds(120));  // two have ended by now, the third is on its way
  loop.RunFor(microseconds(0));
  EXPECT_EQ(heard, (Lines{"a sent 0 at 50", "b got 0 at 50", "a sent 0 at 103", "b got 0 at 103"}));
  b.port.Send(Frame(0));
  loop.RunFor(microseconds(500));
  EXPECT_EQ(heard.back(), "a got 0 at 209");
}

TEST_F(TimedBus, AnAnswerFollowsItsFrameHoweverLateTheLoop) {
  a.whenSent = [this] {
    a.whenSent = nullptr;
    loop.Post([this] { b.port.Send(Frame(0)); });
  };
  a.port.Send(Frame(0));
  loop.Block(microseconds(300));
  loop.RunFor(microseconds(0));
  EXPECT_EQ(heard.back(), "a got 0 at 103");
  b.port.Send(Frame(0));  // at 300, no answer any more
  loop.RunFor(microseconds(500));
  EXPECT_EQ(heard.back(), "a got 0 at 350");
}

TEST_F(TimedBus, TooManyFramesAreGivenUpAndToldOnce) {
  for (int i = 0; i < 1030; ++i) a.port.Send(Frame(0));
  EXPECT_EQ(a.troubles, 1);
  loop.RunFor(std::chrono::seconds(1));
  EXPECT_EQ(heard.size(), 2u * 1024);
}

TEST_F(TimedBus, WhoLeavesHearsNoMoreButWhatItSentStillGoes) {
  a.port.Send(Frame(0));
  a.port.Send(Frame(0x7FF));
  a.whenSent = [this] { a.port.Close(); };
  loop.RunFor(microseconds(500));
  EXPECT_EQ(heard, (Lines{"a sent 0 at 50", "b got 0 at 50", "b got 2047 at 100"}));
  b.port.Send(Frame(0));
  b.port.Close();
  loop.RunFor(microseconds(500));
  EXPECT_EQ(heard.size(), 3u);
}

// Who says nothing takes the bus as it is, whoever comes first.
TEST(BitRate, IsOneForAllPortsOfABus) {
  NTest::VirtualLoop loop;
  NBuses::BusFactory factory(loop);
  const auto silent = factory.Make("virtual:plant");
  const auto first = factory.Make("virtual:plant,bitrate=125000");
  EXPECT_NO_THROW(factory.Make("virtual:plant,bitrate=125000"));
  EXPECT_NO_THROW(factory.Make("virtual:plant"));
  EXPECT_NO_THROW(factory.Make("virtual:other,bitrate=250000"));
  EXPECT_THROW(factory.Make("virtual:plant,bitrate=250000"), std::runtime_error);
}

}  // namespace
