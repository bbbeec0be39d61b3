#include <gmock/gmock.h>

#include "host/buses/bus_factory.h"
#include "host/buses/candump.h"
#include "host/runtime/measurement.h"
#include "tests/host/virtual_loop.h"

namespace {

using namespace std::chrono_literals;
using NRuntime::ComPtr;
using NTest::VirtualLoop;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr NSdk::CanFrame kFrame = {0x123, {0x11, 0x22}, 2};

// A small block: notes what the host does with it, and sends when it is told to.
class Block final : public NRuntime::Implements<NSdk::IRTClient, NSdk::ICANEvents, NSdk::IMSFinalNode,
                                                NSdk::IMSTransferNode> {
 public:
  HRESULT STDMETHODCALLTYPE StartMeasurement(NSdk::IRuntime* newRunTime) override {
    notes.push_back("start");
    runTime = newRunTime;
    if (refuses) return E_FAIL;
    return runTime->GetCanOutput(channel, output.Out());
  }

  HRESULT STDMETHODCALLTYPE StopMeasurement() override {
    notes.push_back("stop");
    if (lastWords) output->Transmit(&kFrame);
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE OnCanMessage(NSdk::ICANMessage* message) override {
    std::uint32_t on = 0, direction = 0;
    std::int64_t time = 0;
    NSdk::CanFrame frame;
    message->GetChannel(&on);
    message->GetDirection(&direction);
    message->GetTimeStamp(&time);
    NRuntime::ReadMessage(*message, frame);
    notes.push_back(NBuses::InterfaceName(on) + (direction == NSdk::kCanTransmitted ? " T " : " R ") +
                    NBuses::FrameText(frame) + " " + std::to_string(time / 1000000));
    messages.push_back(message);
    if (keepsMessages) kept.push_back(message);
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE GetEvents(std::uint32_t* events) override {
    *events = takesCan ? std::uint32_t{NSdk::kBlockTakesCan} : 0u;
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE Passes(std::uint32_t event) override {
    return event == NSdk::kBlockTakesCan && swallows ? S_FALSE : S_OK;
  }

  std::uint32_t channel = 1;
  bool swallows = false;
  bool refuses = false;
  bool takesCan = true;
  bool lastWords = false;
  bool keepsMessages = false;
  ComPtr<NSdk::IRuntime> runTime;
  ComPtr<NSdk::ICANOutput> output;
  std::vector<std::string> notes;
  std::vector<NSdk::ICANMessage*> messages;
  std::vector<ComPtr<NSdk::ICANMessage>> kept;
};

class Measurements : public testing::Test, public NRuntime::MeasurementObserver {
 protected:
  void OnFrame(const NRuntime::SeenFrame& seen) override { seenOn.push_back(seen.channel); }
  void OnTrouble(std::uint32_t, const std::string&) override {}

  std::vector<NRuntime::CanChannel> Channels(std::initializer_list<const char*> buses) {
    std::vector<NRuntime::CanChannel> channels;
    for (const char* bus : buses) {
      channels.push_back({static_cast<std::uint32_t>(channels.size() + 1), factory.Make(bus)});
    }
    return channels;
  }

  VirtualLoop loop;
  NBuses::BusFactory factory{loop};
  std::vector<std::uint32_t> seenOn;
};

TEST_F(Measurements, FramesOfOneBusReachEveryBlockFromTheLoop) {
  NRuntime::Measurement measurement(loop, Channels({"virtual:a", "virtual:a", "virtual:b"}), *this);
  const auto sender = NRuntime::Make<Block>(), deaf = NRuntime::Make<Block>();
  deaf->takesCan = false;
  measurement.Start({static_cast<NSdk::IRTClient*>(sender.Get()), static_cast<NSdk::IRTClient*>(deaf.Get())});
  loop.RunFor(7ms);
  EXPECT_EQ(sender->output->Transmit(&kFrame), S_OK);
  EXPECT_THAT(sender->notes, ElementsAre("start"));  // nothing comes from inside the call
  loop.RunFor(1ms);
  measurement.Stop();
  EXPECT_THAT(sender->notes, ElementsAre("start", "can1 T 123#1122 7", "can2 R 123#1122 7", "stop"));
  EXPECT_THAT(deaf->notes, ElementsAre("start", "stop"));
  EXPECT_THAT(seenOn, ElementsAre(1, 2));
}

TEST_F(Measurements, ABlockMayKeepFramesFromThoseBehindIt) {
  NRuntime::Measurement measurement(loop, Channels({"virtual"}), *this);
  const auto first = NRuntime::Make<Block>(), second = NRuntime::Make<Block>();
  measurement.Start(
      {static_cast<NSdk::IRTClient*>(first.Get()), static_cast<NSdk::IRTClient*>(second.Get())});
  for (const bool swallows : {true, false}) {
    first->swallows = swallows;
    first->output->Transmit(&kFrame);
    loop.RunFor(1ms);
  }
  EXPECT_EQ(first->messages.size(), 2u);
  EXPECT_EQ(second->messages.size(), 1u);
}

TEST_F(Measurements, ABlockThatRefusesStopsThoseBeforeIt) {
  NRuntime::Measurement measurement(loop, Channels({"virtual"}), *this);
  const auto first = NRuntime::Make<Block>(), second = NRuntime::Make<Block>(),
             third = NRuntime::Make<Block>();
  second->refuses = true;
  EXPECT_THROW(measurement.Start({static_cast<NSdk::IRTClient*>(first.Get()),
                                  static_cast<NSdk::IRTClient*>(second.Get()),
                                  static_cast<NSdk::IRTClient*>(third.Get())}),
               std::runtime_error);
  EXPECT_FALSE(measurement.IsRunning());
  EXPECT_THAT(first->notes, ElementsAre("start", "stop"));
  EXPECT_THAT(second->notes, ElementsAre("start"));
  EXPECT_THAT(third->notes, IsEmpty());
}

TEST_F(Measurements, WhatABlockSendsWhileItStopsLeavesButNothingLater) {
  NRuntime::Measurement measurement(loop, Channels({"virtual"}), *this);
  const auto block = NRuntime::Make<Block>();
  block->lastWords = true;
  measurement.Start({static_cast<NSdk::IRTClient*>(block.Get())});
  measurement.Stop();
  EXPECT_THAT(seenOn, ElementsAre(1));
  EXPECT_THAT(block->notes, ElementsAre("start", "stop"));
  EXPECT_EQ(block->output->Transmit(&kFrame), E_FAIL);
  std::int64_t time = 0;
  EXPECT_EQ(block->runTime->GetTime(&time), E_FAIL);
}

TEST_F(Measurements, OutputsRefuseWhatIsNoFrame) {
  NRuntime::Measurement measurement(loop, Channels({"virtual"}), *this);
  const auto block = NRuntime::Make<Block>();
  measurement.Start({static_cast<NSdk::IRTClient*>(block.Get())});
  const NSdk::CanFrame refused[] = {{0x800, {}, 0}, {1, {}, 9}, {0x20000000, {}, NSdk::kFrameExtended}};
  for (const NSdk::CanFrame& frame : refused) EXPECT_EQ(block->output->Transmit(&frame), E_INVALIDARG);
  EXPECT_EQ(block->output->Transmit(nullptr), E_POINTER);
  ComPtr<NSdk::ICANOutput> none;
  EXPECT_EQ(block->runTime->GetCanOutput(2, none.Out()), E_INVALIDARG);
  const auto onTwo = NRuntime::Make<NRuntime::CanMessage>(
      NRuntime::SeenFrame{2, NSdk::kCanReceived, NRuntime::Time{}, kFrame});
  EXPECT_EQ(block->output->TransmitMessage(onTwo.Get()), E_INVALIDARG);
  loop.RunFor(1ms);
  EXPECT_THAT(seenOn, IsEmpty());
}

TEST_F(Measurements, OneMessageObjectServesAllFramesUntilABlockKeepsIt) {
  NRuntime::Measurement measurement(loop, Channels({"virtual"}), *this);
  const auto block = NRuntime::Make<Block>();
  measurement.Start({static_cast<NSdk::IRTClient*>(block.Get())});
  const auto send = [&](std::uint32_t identifier) {
    const NSdk::CanFrame frame = {identifier, {}, 0};
    block->output->Transmit(&frame);
    loop.RunFor(1ms);
  };
  send(1), send(2);
  EXPECT_EQ(block->messages[0], block->messages[1]);
  block->keepsMessages = true;
  send(3), send(4);
  std::uint32_t identifier = 0;
  block->kept[0]->GetIdentifier(&identifier);
  EXPECT_EQ(identifier, 3u);
}

}  // namespace
