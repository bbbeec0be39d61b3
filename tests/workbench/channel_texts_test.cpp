// What a user writes in the dialog of channels and devices, and what comes back.

#include <gmock/gmock.h>

#include "host/workbench/bus_load.h"
#include "host/workbench/channel_texts.h"

namespace {

using namespace NWorkbench;
using testing::HasSubstr;

const std::vector<NConfiguration::Channel> kChannels = {{1, "virtual"}, {12, "virtual:b"}};

std::string Refusal(const std::string& lines) {
  try {
    ParseDeviceLines(lines, kChannels);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return {};
}

TEST(ChannelTexts, DevicesComeBackAsTheyWere) {
  const std::string lines = "1=5\r\n12=9:drive.eds,late=20,bad-crc\r\n";
  const auto devices = ParseDeviceLines("\n 1 = 5 \n\n" + lines.substr(5), kChannels);
  ASSERT_EQ(devices.size(), 2u);
  EXPECT_EQ(devices[1].channel, 12u);
  EXPECT_EQ(devices[1].device.faults.answerDelay, std::chrono::milliseconds(20));
  EXPECT_EQ(DeviceLines(devices), lines);
}

TEST(ChannelTexts, FaultyDevicesAreNamed) {
  EXPECT_THAT(Refusal("5"), HasSubstr("\"5\": CHANNEL=NODE"));
  EXPECT_THAT(Refusal("2=5"), HasSubstr("no CAN channel 2"));
  EXPECT_THAT(Refusal("1=5\n1=5:x.eds"), HasSubstr("\"1=5:x.eds\": this node-ID is there twice"));
  EXPECT_THAT(Refusal("1=128"), HasSubstr("128"));
  EXPECT_EQ(Refusal("1=5\n12=5"), "");
}

TEST(ChannelTexts, TimingIsTwoBytesOrNothing) {
  EXPECT_EQ(ParseTiming("  "), std::nullopt);
  EXPECT_EQ(TimingText(ParseTiming("3 1c")), "03 1C");
  for (const char* text : {"3", "3 1C 0", "100 1C", "G 1", "3 -1"})
    EXPECT_THROW(ParseTiming(text), std::runtime_error);
}

TEST(ChannelTexts, TheLoadIsThatOfTheLastSpan) {
  BusLoad load(100000);
  NRuntime::SeenFrame seen;
  seen.frame = {0x555, {0x55, 0x55, 0x55, 0x55, 0x55, 0x55, 0x55, 0x55}, 8};  // nothing to stuff in its data
  for (int frame = 0; frame < 100; ++frame) load.Add(seen);
  EXPECT_EQ(load.Load(), std::nullopt);
  load.EndSpan(std::chrono::seconds(1));
  EXPECT_NEAR(load.Load().value_or(0), 11.1, 0.5);
  load.EndSpan(std::chrono::seconds(2));
  EXPECT_EQ(load.Load(), 0.0);
  EXPECT_EQ(load.Received(), 100u);
}

}  // namespace
