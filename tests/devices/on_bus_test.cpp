#include "host/devices/device_on_bus.h"

#include <gmock/gmock.h>

#include "host/buses/bus_factory.h"
#include "tests/devices/bench.h"
#include "tests/host/virtual_loop.h"

namespace {

using namespace NDevicesTest;
using testing::HasSubstr;
using Texts = std::vector<std::string>;

// Somebody else on the bus, who notes what was seen in which order.
class Listener final : public NRuntime::CanAdapterEvents {
 public:
  explicit Listener(std::unique_ptr<NRuntime::CanAdapter> ownAdapter) : adapter(std::move(ownAdapter)) {
    adapter->Open(*this);
  }
  void OnReceived(const NSdk::CanFrame& frame, Time) override { seen.push_back(Text(frame)); }
  void OnSent(const NSdk::CanFrame& frame, Time) override { seen.push_back(Text(frame)); }
  void OnTrouble(const std::string&) override {}
  Texts Seen() { return std::exchange(seen, {}); }

  std::unique_ptr<NRuntime::CanAdapter> adapter;
  Texts seen;
};

class OnBus : public testing::Test {
 protected:
  std::unique_ptr<NDevices::DeviceOnBus> Attach(const char* word) {
    return AttachDevice(loop, factory.Make("virtual"), NDevices::ParseDeviceWord(word));
  }

  NTest::VirtualLoop loop;
  NBuses::BusFactory factory{loop};
  Listener master{factory.Make("virtual")};
};

TEST_F(OnBus, DevicesBootAnswerAndLeave) {
  const auto five = Attach("5");
  const auto six = Attach("6");
  EXPECT_EQ(master.Seen(), Texts{});
  five->PowerOn();
  six->PowerOn();
  six->PowerOn();
  EXPECT_EQ(master.Seen(), (Texts{"705 00", "706 00"}));
  master.adapter->Send(Frame("605 40 18 10 04 00 00 00 00"));
  master.adapter->Send(Frame("606 40 18 10 04 00 00 00 00"));
  loop.RunFor(0s);
  EXPECT_EQ(master.Seen(), (Texts{"605 40 18 10 04 00 00 00 00", "606 40 18 10 04 00 00 00 00",
                                  "585 43 18 10 04 05 00 00 00", "586 43 18 10 04 06 00 00 00"}));
  five->PowerOff();
  master.adapter->Send(Frame("000 01 00"));
  loop.RunFor(0s);
  EXPECT_EQ(master.Seen(), (Texts{"000 01 00", "186 00 00", "286 00 00 00 00 00 00 00 00"}));
  EXPECT_EQ(five->Get().State(), NDevices::NmtState::Initialising);
}

// An order that a synchronous answer would break for those who hear of the request last.
TEST_F(OnBus, EverybodySeesARequestBeforeItsAnswer) {
  const auto device = Attach("5");
  device->PowerOn();
  Listener late(factory.Make("virtual"));
  master.adapter->Send(Frame("605 40 07 20 00 00 00 00 00"));
  loop.RunFor(0s);
  EXPECT_EQ(late.Seen(), (Texts{"605 40 07 20 00 00 00 00 00", "585 4F 07 20 00 00 00 00 00"}));
}

TEST_F(OnBus, DeadlinesComeFromTheLoop) {
  const auto device = Attach("5");
  device->PowerOn();
  master.adapter->Send(Frame("605 2B 17 10 00 0A 00 00 00"));
  loop.RunFor(0s);
  master.Seen();
  // A transfer moves its deadline with every frame; the heartbeat must not suffer.
  master.adapter->Send(Frame("605 40 00 20 00 00 00 00 00"));
  loop.RunFor(35ms);
  EXPECT_EQ(master.Seen(), (Texts{"605 40 00 20 00 00 00 00 00", "585 41 00 20 00 25 00 00 00", "705 7F",
                                  "705 7F", "705 7F"}));
  master.adapter->Send(Frame("605 2B 17 10 00 00 00 00 00"));
  loop.RunFor(1ms);
  master.Seen();
  loop.RunFor(1min);
  EXPECT_EQ(master.Seen(), Texts{});
}

TEST_F(OnBus, ADeviceThatIsGoneLeavesNothingBehind) {
  auto device = Attach("5");
  device->PowerOn();
  master.Seen();
  master.adapter->Send(Frame("605 40 07 20 00 00 00 00 00"));
  device.reset();
  loop.RunFor(1min);
  EXPECT_EQ(master.Seen(), Texts{"605 40 07 20 00 00 00 00 00"});
}

TEST_F(OnBus, AChangeFromOutsideIsAnEvent) {
  const auto device = Attach("5");
  device->PowerOn();
  master.adapter->Send(Frame("000 01 05"));
  loop.RunFor(0s);
  master.Seen();
  EXPECT_EQ(device->SetValue({0x6000, 1}, Bytes{0x42}), NDevices::AbortCode::None);
  EXPECT_TRUE(device->RaiseError({0x1000, 0, {}}));
  EXPECT_EQ(master.Seen(), (Texts{"185 42 00", "085 00 10 01 00 00 00 00 00"}));
}

TEST_F(OnBus, ADescriptionIsRefused) {
  try {
    Attach("5:io.eds");
    ADD_FAILURE();
  } catch (const std::runtime_error& error) {
    EXPECT_THAT(error.what(), HasSubstr("device \"5:io.eds\": description files are not supported"));
  }
}

}  // namespace
