#include <gmock/gmock.h>

#include <fstream>
#include <functional>

#include "host/buses/bus_factory.h"
#include "host/runtime/asio_loop.h"
#include "host/runtime/measurement.h"
#include "host/runtime/text.h"
#include "tests/buses/listener.h"
#include "tests/host/virtual_loop.h"
#include "tests/test_folder.h"

namespace {

using namespace std::chrono_literals;
using NTest::Refusal;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Replay : public testing::Test {
 protected:
  std::string Write(const std::string& content) const {
    std::ofstream(folder / "it.log", std::ios::binary) << content;
    return "replay:" + NRuntime::PathText(folder / "it.log");
  }

  const NTest::TestFolder folder;
  NTest::VirtualLoop loop;
  NBuses::BusFactory factory{loop};
  NTest::Listener one, two;
};

TEST_F(Replay, ChannelsPlayTheirInterfacesOfOneFileInStep) {
  const std::string word = Write(
      "(100.000000) can0 100#\r\n(100.250000) can1 101#\r\n(100.200000) can0 102#\n(101.000000) can1 103#R4");
  const std::pair<const char*, NRuntime::Time> speeds[] = {{"1", 1000ms}, {"4", 250ms}, {"0.5", 2000ms}};
  for (const auto& [speed, second] : speeds) {
    SCOPED_TRACE(speed);
    NTest::Listener all, second_one;
    const auto both = factory.Make(word + ",speed=" + speed);
    const auto can1 = factory.Make(word + ",iface=can1,speed=" + speed);
    const auto start = loop.Now();
    both->Open(all);
    can1->Open(second_one);
    both->Send({0x123, {}, 0});
    EXPECT_THAT(all.sent, ElementsAre("123#"));
    loop.RunFor(second / 4 - 1ns);
    EXPECT_THAT(all.received, ElementsAre("100#"));
    loop.RunFor(second * 3 / 4);
    EXPECT_EQ(all.ends, 0);
    loop.RunFor(1ns);
    EXPECT_THAT(all.received, ElementsAre("100#", "101#", "102#", "103#R4"));
    EXPECT_THAT(all.times, ElementsAre(start, start + second / 4, start + second / 4, start + second));
    EXPECT_THAT(second_one.received, ElementsAre("101#", "103#R4"));
    EXPECT_THAT(second_one.times, ElementsAre(start + second / 4, start + second));
    EXPECT_EQ(all.ends + second_one.ends, 2);
    EXPECT_THAT(all.troubles, IsEmpty());
  }
}

TEST_F(Replay, WhatCannotBePlayedIsReportedOnceAndCounted) {
  std::string content = "(1.0) can0 100#\nno frame\n(1.0) can0 20000080#00\n(1.0) can0 20000080#00\n";
  content += std::string(300000, 'x') + "\n(1.0) can0 101#\n" + std::string(300000, '\0');
  for (int line = 0; line < 1000; ++line) content += "\n\xFF\xFE";
  const auto port = factory.Make(Write(content) + ",iface=can0"),
             other = factory.Make(Write(content) + ",iface=can7");
  port->Open(one);
  other->Open(two);
  loop.RunFor(1s);
  EXPECT_THAT(one.received, ElementsAre("100#", "101#"));
  ASSERT_EQ(one.troubles.size(), 7u);
  EXPECT_THAT(one.troubles[0], HasSubstr("it.log, line 2: a line begins with a time"));
  EXPECT_THAT(one.troubles[1], HasSubstr("it.log, line 3: an error frame"));
  EXPECT_THAT(one.troubles[2], HasSubstr("it.log, line 5: the line is too long"));
  EXPECT_THAT(one.troubles[3], HasSubstr("it.log, line 7: the line is too long"));
  EXPECT_THAT(one.troubles[6], HasSubstr("it.log: 1003 malformed lines, 2 error frames in all"));
  EXPECT_THAT(two.troubles, ElementsAre(HasSubstr("no frame of interface \"can7\" (there are: can0)")));
}

// The clock of a recorder that starts in 1970 and is then set; a log that was appended to an older one.
TEST_F(Replay, NobodyWaitsForAClockThatWasSet) {
  const auto port =
      factory.Make(Write("(0.0) c 100#\n(0.1) c 101#\n(1700000000.0) c 102#\n(1700000000.1) c 103#\n(5.0) c "
                         "104#\n(5.1) c 105#\n"));
  const auto start = loop.Now();
  port->Open(one);
  loop.RunFor(1s);
  EXPECT_THAT(one.times,
              ElementsAre(start, start + 100ms, start + 100ms, start + 200ms, start + 200ms, start + 300ms));
  EXPECT_THAT(one.troubles, ElementsAre(HasSubstr("line 3: the time goes forward by 1699999999 s"),
                                        HasSubstr("line 5: the time goes back by 1699999995 s")));
}

TEST_F(Replay, StartsAgainWhenItIsOpenedAgain) {
  const auto port = factory.Make(Write("(1.0) c 100#\n(2.0) c 101#\n"));
  port->Open(one);
  loop.RunFor(10ms);
  port->Close();
  loop.RunFor(2s);
  port->Open(one);
  loop.RunFor(2s);
  EXPECT_THAT(one.received, ElementsAre("100#", "100#", "101#"));
  EXPECT_EQ(one.ends, 1);
}

TEST_F(Replay, BadInputIsNamed) {
  Write("");
  NRuntime::AsioLoop asioLoop;
  NBuses::BusFactory whole(asioLoop);
  const std::string file = "replay:" + NRuntime::PathText(folder / "it.log");
  const std::pair<std::string, const char*> words[] = {
      {"replay", "replay:FILE"},
      {file + ",speed=0", "speed=0"},
      {file + ",speed=1e3", "speed=1e3"},
      {file + ",speed=nan", "speed=nan"},
      {file + ",speed=fast", "speed=fast"},
      {file + ",loop=1", "unknown option \"loop\" (replay has speed, iface)"},
  };
  for (const auto& [word, fault] : words) {
    EXPECT_THAT(Refusal([&, word = word] { factory.Make(word); }), HasSubstr(fault));
  }
  const auto max = whole.Make(file + ",speed=max");
  EXPECT_THAT(Refusal([&] { whole.Make(file); }), HasSubstr("sets its own with speed=max"));
  EXPECT_NO_THROW(whole.Make("virtual"));
  for (const std::filesystem::path& path : {folder.Path(), folder / "none.log"}) {
    const auto port = factory.Make("replay:" + NRuntime::PathText(path));
    EXPECT_THAT(Refusal([&] { port->Open(one); }), HasSubstr(NRuntime::PathText(path) + ": no"));
  }
  const auto empty = factory.Make(file);
  empty->Open(one);
  loop.RunFor(1ms);
  EXPECT_THAT(one.troubles, ElementsAre(HasSubstr("there is no frame in it")));
}

TEST_F(Replay, AMeasurementEndsOnceAfterTheLastFrameOfAllChannels) {
  struct Observer : NRuntime::MeasurementObserver {
    void OnFrame(const NRuntime::SeenFrame& seen) override { seenOn.push_back(seen.channel); }
    void OnTrouble(std::uint32_t, const std::string&) override {}
    void OnEnd() override { seenOn.push_back(0); }
    std::vector<std::uint32_t> seenOn;
  } observer;
  const std::string word = Write("(1.0) can0 100#\n(1.1) can1 101#\n(1.2) can0 102#\n");
  std::vector<NRuntime::CanChannel> channels;
  channels.push_back({1, factory.Make(word + ",iface=can0")});
  channels.push_back({2, factory.Make(word + ",iface=can1,speed=2")});
  NRuntime::Measurement measurement(loop, std::move(channels), observer);
  for (int run = 0; run < 2; ++run) {
    observer.seenOn.clear();
    measurement.Start({});
    loop.RunFor(1s);
    EXPECT_THAT(observer.seenOn, ElementsAre(1, 2, 1, 0));
    measurement.Stop();
  }
}

// An hour passes at once, and a time-out of a second comes where the log is silent for longer.
TEST_F(Replay, AtSpeedMaxTheClockFollowsTheLog) {
  std::string content;
  for (int second = 0; second < 3600; ++second) {
    if (second < 1000 || second > 1002) content += "(" + std::to_string(second) + ".000000) can0 705#05\n";
  }
  NRuntime::AsioLoop fast;
  NBuses::BusFactory buses(fast);
  const auto port = buses.Make(Write(content) + ",speed=max");
  struct Watch : NTest::Listener {
    explicit Watch(NRuntime::AsioLoop& ownLoop) : loop(ownLoop) {}
    void OnReceived(const NSdk::CanFrame&, NRuntime::Time time) override {
      EXPECT_EQ(loop.Now(), time);
      timer->SetFor(time + 1500ms);
    }
    void OnEnd() override {
      loop.Post([this] { loop.Stop(); });
    }
    NRuntime::AsioLoop& loop;
    std::vector<NRuntime::Time> silences;
    std::unique_ptr<NRuntime::Alarm> timer = loop.MakeAlarm([this] { silences.push_back(loop.Now()); });
  } watch(fast);
  const auto start = fast.Now();
  port->Open(watch);
  const auto begin = std::chrono::steady_clock::now();
  fast.Run();
  EXPECT_LT(std::chrono::steady_clock::now() - begin, 5s);
  EXPECT_THAT(watch.silences, ElementsAre(start + 999s + 1500ms));
  EXPECT_EQ(fast.Now(), start + 3599s);
}

}  // namespace
