#include "host/devices/device_on_bus.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/buses/bus_factory.h"
#include "host/runtime/text.h"
#include "tests/devices/bench.h"
#include "tests/host/virtual_loop.h"
#include "tests/test_folder.h"

namespace {

using namespace NDevicesTest;
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
  std::unique_ptr<NDevices::DeviceOnBus> Attach(const std::string& word) {
    return AttachDevice(loop, factory.Make("virtual"), NDevices::ParseDeviceWord(word), OSTREL_PROGRAMS);
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

constexpr char kPumpEds[] = R"([OptionalObjects]
SupportedObjects=8
1=0x1000
2=0x1003
3=0x1014
4=0x1017
5=0x1800
6=0x1A00
7=0x2000
8=0x2001
[0005]
ParameterName=UNSIGNED8
ObjectType=5
DataType=5
AccessType=ro
[1000]
ParameterName=Type
DataType=7
AccessType=ro
DefaultValue=0x191
[1003]
ParameterName=Errors
ObjectType=8
DataType=7
AccessType=rw
CompactSubObj=2
[1014]
ParameterName=EMCY
DataType=7
AccessType=rw
DefaultValue=$NODEID+0x80
[1017]
ParameterName=Heartbeat
DataType=6
AccessType=rw
ParameterValue=10
[1800]
ParameterName=TPDO
ObjectType=9
SubNumber=3
[1800sub0]
ParameterName=n
DataType=5
AccessType=const
DefaultValue=2
[1800sub1]
ParameterName=COB-ID
DataType=7
AccessType=rw
DefaultValue=0x180+$NODEID
[1800sub2]
ParameterName=Type
DataType=5
AccessType=rw
DefaultValue=255
[1A00]
ParameterName=Mapping
ObjectType=8
DataType=7
AccessType=rw
CompactSubObj=1
[1A00Value]
NrOfEntries=1
1=0x20000010
[2000]
ParameterName=Speed
DataType=3
AccessType=rwr
PDOMapping=1
LowLimit=0xFFFE
HighLimit=100
DefaultValue=-1
[2001]
ParameterName=Name
DataType=9
AccessType=const
DefaultValue=Pump
)";

TEST_F(OnBus, ADescribedDeviceHasItsObjects) {
  const NTest::TestFolder folder;
  const auto file = NTest::WriteFile(folder / "pump.eds", kPumpEds);
  const auto device = Attach("5:" + NRuntime::PathText(file));
  std::filesystem::remove(file);
  device->PowerOn();
  master.Seen();
  const char* const requests[] = {"605 40 00 10 00 00 00 00 00", "605 40 03 10 00 00 00 00 00",
                                  "605 40 14 10 00 00 00 00 00", "605 40 01 20 00 00 00 00 00",
                                  "605 40 05 00 00 00 00 00 00", "605 2B 00 20 00 65 00 00 00",
                                  "605 2B 00 20 00 FD FF 00 00", "605 2F 01 20 00 41 00 00 00"};
  Texts answers;
  for (const char* request : requests) {
    master.adapter->Send(Frame(request));
    loop.RunFor(0s);
    for (const std::string& text : master.Seen()) {
      if (text != request) answers.push_back(text);
    }
  }
  EXPECT_EQ(answers, (Texts{"585 43 00 10 00 91 01 00 00", "585 4F 03 10 00 00 00 00 00",
                            "585 43 14 10 00 85 00 00 00", "585 43 01 20 00 50 75 6D 70",
                            "585 80 05 00 00 00 00 02 06", "585 80 00 20 00 31 00 09 06",
                            "585 80 00 20 00 32 00 09 06", "585 80 01 20 00 02 00 01 06"}));
  loop.RunFor(10ms);
  EXPECT_EQ(master.Seen(), Texts{"705 7F"});
  master.adapter->Send(Frame("000 01 05"));
  loop.RunFor(0s);
  EXPECT_EQ(master.Seen(), (Texts{"000 01 05", "185 FF FF"}));
}

TEST_F(OnBus, ADescriptionThatCannotBeUsedIsNamed) {
  try {
    Attach("5:no-such.eds");
    ADD_FAILURE();
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "device \"5:no-such.eds\": no-such.eds: no such file");
  }
}

}  // namespace
