#include <gmock/gmock.h>

#include "tests/ig/generator_fixture.h"

namespace {

using namespace NCanopen;
using NSdk::kCyclicList;
using NSdk::kSequenceList;
using NTest::GeneratorTest;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

TEST_F(GeneratorTest, SendsOneItemPerTickAndEndsOnTheTickAfterTheLast) {
  first->Add<ZSyncItemInfo>(kSequenceList).record.cobId = 0x20000800;
  first->Add<ZSyncItemInfo>(kSequenceList).SetEnabled(0);
  auto& emcy = first->Add<ZEmcyItemInfo>(kSequenceList).record;
  emcy.errorCode = 0x8130;
  emcy.errorRegister = 0x11;
  emcy.manufacturer = {1, 2, 3, 4, 5};
  first->Add<ZNMTItemInfo>(kSequenceList).record.nodeId = 0;
  SetToggle(first->Add<ZGuardingItemInfo>(kSequenceList).record, true);
  first->Add<ZRTRItemInfo>(kSequenceList).record.dlc = 4;
  first->AddPdo(kSequenceList, "uint:4660", 2);

  host->RunFor(3);
  block.ToggleSequence();
  host->RunFor(69);
  EXPECT_THAT(host->TakeSent(),
              ElementsAre("13: 800x [0]", "23: 81 [8] 30 81 11 01 02 03 04 05", "33: 0 [2] 01 00",
                          "43: 701 [1] FF", "53: 181 [R4]", "63: 181 [2] 34 12"));
  EXPECT_EQ(block.Activity(), NSdk::kSequenceRunning);
  host->RunFor(1);
  EXPECT_EQ(block.Activity(), 0u);
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(GeneratorTest, DataWithoutTypeBecomesAByteArrayAndLongDataFollowsTheFourBitLength) {
  const auto& untyped = first->AddPdo(kSequenceList, "0102", 2);
  first->AddPdo(kSequenceList, "bytearr:00112233445566778899AABB", 12);
  first->AddPdo(kSequenceList, "bytearr:00112233445566778899AABBCCDDEEFF", 16);
  block.ToggleSequence();
  host->RunFor(40);
  EXPECT_THAT(host->TakeSent(),
              ElementsAre("10: 181 [2] 01 02", "20: 181 [8] 00 11 22 33 44 55 66 77", "30: 181 [0]"));
  EXPECT_EQ(untyped.record.data, "bytearr:0102");
}

TEST_F(GeneratorTest, NumbersThatAreSetMeanwhileCountFromTheNextSequenceOn) {
  first->Add<ZSyncItemInfo>(kSequenceList);
  block.SetNumbers({.serviceDelay = 30, .channel = 7});
  block.ToggleSequence();
  host->RunFor(100);
  EXPECT_THAT(host->TakeSent(), ElementsAre("30: 80 [0]"));
  EXPECT_EQ(block.Numbers().channel, 1u) << "that of the output";
}

TEST_F(GeneratorTest, ASequenceOfDisabledItemsStartsAndEndsOnTheFirstTick) {
  first->Add<ZSyncItemInfo>(kSequenceList).SetEnabled(0);
  block.ToggleSequence();
  EXPECT_EQ(block.Activity(), NSdk::kSequenceRunning);
  host->RunFor(10);
  EXPECT_EQ(block.Activity(), 0u);

  first->generator.List(kSequenceList).clear();
  block.ToggleSequence();
  EXPECT_EQ(block.Activity(), 0u) << "an empty list does not start";
}

TEST_F(GeneratorTest, APauseHoldsTheSequenceForWholeTicks) {
  first->Add<ZSyncItemInfo>(kSequenceList);
  first->AddPause(1000);
  first->Add<ZSyncItemInfo>(kSequenceList);
  first->AddPause(25);
  block.ToggleSequence();
  host->RunFor(1030);
  EXPECT_THAT(host->TakeSent(), ElementsAre("10: 80 [0]", "1030: 80 [0]"));
  host->RunFor(30);
  EXPECT_EQ(block.Activity(), NSdk::kSequenceRunning) << "the pause at the end is held as well";
  host->RunFor(10);
  EXPECT_EQ(block.Activity(), 0u);
}

TEST_F(GeneratorTest, ACyclicMessageLeavesAfterItsDelayAndThenEveryCycle) {
  first->AddCyclicSync(50, 100);
  first->AddCyclicSync(0, 1000).SetEnabled(0);
  block.ToggleCyclic();
  EXPECT_EQ(block.Activity(), NSdk::kCyclicRequested);
  host->RunFor(10);
  EXPECT_EQ(block.Activity(), NSdk::kCyclicRunning) << "taken up by the next expiry of any timer";
  host->RunFor(260);
  EXPECT_THAT(host->TakeSent(), ElementsAre("60: 80 [0]", "160: 80 [0]", "260: 80 [0]"));
  block.ToggleCyclic();
  host->RunFor(1000);
  EXPECT_THAT(host->TakeSent(), IsEmpty());
  EXPECT_EQ(block.Activity(), 0u);
}

TEST_F(GeneratorTest, OnceASequenceHasEndedACyclicStartWaitsForTheNextOne) {
  first->Add<ZSyncItemInfo>(kSequenceList);
  first->AddCyclicSync(0, 100);
  block.ToggleSequence();
  host->RunFor(100);
  block.ToggleCyclic();
  host->TakeSent();
  host->RunFor(5000);
  EXPECT_THAT(host->TakeSent(), IsEmpty());
  block.ToggleSequence();
  host->RunFor(10);
  EXPECT_THAT(host->TakeSent(), SizeIs(2));
  EXPECT_EQ(block.Activity(), NSdk::kSequenceRunning | NSdk::kCyclicRunning);
}

TEST_F(GeneratorTest, TheSequenceSwitchesCyclicTransmissionOnAndOff) {
  first->AddCyclicSync(0, 10);
  first->AddSwitch(1);
  first->AddPause(30);
  first->AddSwitch(0);
  block.ToggleSequence();
  EXPECT_THAT(first->window.Take(),
              ElementsAre("disable 707", "disable 731", "text 731 St&op", "text 706 St&op", "disable 728"));
  host->RunFor(500);
  EXPECT_THAT(host->TakeSent(),
              ElementsAre("10: 80 [0]", "20: 80 [0]", "30: 80 [0]", "40: 80 [0]", "50: 80 [0]"));
  EXPECT_EQ(block.Activity(), 0u);
  EXPECT_EQ(first->window.labels[NIg::kControlStart], L"S&tart");
  EXPECT_EQ(first->window.labels[NIg::kControlExecute], L"&Execute");
}

TEST_F(GeneratorTest, TheUserStopsASequenceAndTheCyclicTransmissionThatItStarted) {
  first->AddCyclicSync(0, 10);
  first->AddSwitch(1);
  for (int i = 0; i < 100; ++i) first->Add<ZNMTItemInfo>(kSequenceList);
  block.ToggleSequence();
  host->RunFor(25);
  block.ToggleSequence();
  EXPECT_EQ(block.Activity(), NSdk::kSequenceRunning) << "the next tick ends it";
  host->TakeSent();
  host->RunFor(100);
  EXPECT_THAT(host->TakeSent(), IsEmpty());
  EXPECT_EQ(block.Activity(), 0u);
}

TEST_F(GeneratorTest, AFailedSequenceItemEndsTheSequenceAloneAndIsSelected) {
  first->AddCyclicSync(0, 1000);
  block.ToggleCyclic();
  first->Add<ZSyncItemInfo>(kSequenceList).SetEnabled(0);
  first->AddPdo(kSequenceList, "bytearr:1G", 1);
  first->Add<ZSyncItemInfo>(kSequenceList);
  block.ToggleSequence();
  std::uint32_t whileShown = NSdk::kSequenceRunning;
  host->dialogs->whileShown = [&] {
    host->RunFor(50);  // the box lets further ticks in, and the user at the lists
    block.List(kSequenceList).clear();
    whileShown = block.Activity();
  };
  first->window.Take();
  host->RunFor(200);
  EXPECT_EQ(whileShown, NSdk::kCyclicRunning);
  ASSERT_THAT(Messages(), SizeIs(1));
  EXPECT_EQ(Messages()[0],
            L"The message sequence was not transmitted completely due to error.\n"
            L"Please check the attributes of the selected list item.");
  EXPECT_EQ(host->dialogs->icons[0], NSdk::kMessageExclamation);
  const auto posts = first->window.Take();
  ASSERT_GE(posts.size(), 4u);
  EXPECT_THAT(std::vector(posts.begin(), posts.begin() + 4),
              ElementsAre("enable 728", "enable 706", "select 728/1", "stop timer"));
  EXPECT_EQ(block.Activity(), NSdk::kCyclicRunning);
  EXPECT_THAT(first->failed, ElementsAre("0/1"));
}

TEST_F(GeneratorTest, AFailedCyclicItemStopsAllCyclicTransmissionAndIsSelected) {
  first->AddCyclicSync(0, 10).SetEnabled(0);
  first->AddCyclicSync(0, 10);
  first->AddPdo(kCyclicList, "uint:-5", 1).record.delay_ms = 25;
  block.ToggleCyclic();
  host->RunFor(200);
  EXPECT_THAT(host->TakeSent(), ElementsAre("10: 80 [0]", "20: 80 [0]", "30: 80 [0]"));
  ASSERT_THAT(Messages(), SizeIs(1));
  EXPECT_THAT(first->window.posts, testing::Contains("select 707/2"));
  EXPECT_EQ(block.Activity(), 0u);
  EXPECT_THAT(first->failed, ElementsAre("1/2"));
}

TEST_F(GeneratorTest, OnlyOneBlockSendsAtATime) {
  first->Add<ZSyncItemInfo>(kSequenceList);
  first->AddCyclicSync(0, 10);
  second->Add<ZSyncItemInfo>(kSequenceList);
  const std::wstring refusal = L"Only one generator block is allowed to send the messages at the same time.";

  block.ToggleSequence();
  second->generator.ToggleSequence();
  second->generator.ToggleCyclic();
  EXPECT_THAT(Messages(), ElementsAre(refusal, refusal));
  host->RunFor(100);

  Messages().clear();
  block.ToggleSequence();
  block.ToggleCyclic();
  host->RunFor(100);
  second->generator.ToggleSequence();
  EXPECT_THAT(Messages(), ElementsAre(refusal));
  second->generator.ToggleCyclic();
  EXPECT_THAT(Messages(), SizeIs(1)) << "against cyclic transmission alone the command does nothing";
  EXPECT_EQ(second->generator.Activity(), 0u);
}

TEST_F(GeneratorTest, CyclicSdoItemsMustNotShareAChannel) {
  first->Add<ZSDOItemInfo>(kCyclicList);
  auto& other = first->Add<ZSDOItemInfo>(kCyclicList);
  other.record.cobIdTx = 0x602;  // the response identifier is still shared
  block.ToggleCyclic();
  EXPECT_THAT(
      Messages(),
      ElementsAre(L"Cyclic transmission of more than one SDO on the same SDO channel is not allowed."));
  EXPECT_EQ(host->dialogs->icons[0], NSdk::kMessagePlain);
  EXPECT_EQ(block.Activity(), 0u);
  other.SetEnabled(0);
  block.ToggleCyclic();
  EXPECT_EQ(block.Activity(), NSdk::kCyclicRequested);
}

TEST_F(GeneratorTest, TheEndOfTheMeasurementEndsEverything) {
  first->Add<ZSyncItemInfo>(kSequenceList);
  first->AddPause(100000);
  first->AddCyclicSync(0, 10);
  block.ToggleCyclic();
  block.ToggleSequence();
  host->RunFor(50);
  first->window.Take();
  block.StopMeasurement();
  const auto posts = first->window.Take();
  ASSERT_GE(posts.size(), 7u);
  EXPECT_THAT(std::vector(posts.end() - 7, posts.end()),
              ElementsAre("disable 731", "disable 706", "enable 728", "enable 707", "disable 731",
                          "text 731 S&tart", "text 706 &Execute"));
  host->TakeSent();
  host->RunFor(1000);
  EXPECT_THAT(host->TakeSent(), IsEmpty());
  EXPECT_EQ(block.Activity(), 0u);

  second->Add<ZSyncItemInfo>(kSequenceList);
  second->generator.ToggleSequence();
  EXPECT_THAT(Messages(), IsEmpty()) << "no other block is kept from sending";
  EXPECT_EQ(second->generator.Activity(), NSdk::kSequenceRunning);

  block.StartMeasurement(*host);
  EXPECT_THAT(first->window.Take(), ElementsAre("enable 706", "enable 731"));
}

TEST_F(GeneratorTest, WhoHearsOfAnItemMayStopTheMeasurement) {
  first->Add<ZSyncItemInfo>(kSequenceList);
  first->AddCyclicSync(0, 10);
  first->whenSent = [&] { block.StopMeasurement(); };
  block.ToggleSequence();
  host->RunFor(50);
  EXPECT_THAT(host->TakeSent(), SizeIs(1));
  block.StartMeasurement(*host);
  block.ToggleCyclic();
  host->RunFor(50);
  EXPECT_THAT(host->TakeSent(), SizeIs(1));
  EXPECT_EQ(block.Activity(), 0u);

  // The same of a transfer, one that was refused and one that the next item cuts off.
  for (const std::uint32_t node : {0u, 1u}) {
    first->generator.List(kSequenceList).clear();
    first->generator.List(kCyclicList).clear();
    const auto list = node == 0 ? kSequenceList : kCyclicList;
    for (std::uint32_t channel = 0; channel < 2; ++channel) {
      auto& transfer = first->Add<ZSDOItemInfo>(list).record;
      transfer.upload = 1;
      transfer.nodeId = node;
      transfer.cobIdTx += channel;
      transfer.cobIdRx += channel;
    }
    first->whenEnded = [&] { block.StopMeasurement(); };
    block.StartMeasurement(*host);
    node == 0 ? block.ToggleSequence() : block.ToggleCyclic();
    host->RunFor(50);
    EXPECT_EQ(block.Activity(), 0u);
    EXPECT_THAT(Messages(), IsEmpty());
  }
}

TEST_F(GeneratorTest, AStartWithoutAStopEndsTheMeasurementBefore) {
  first->AddCyclicSync(0, 10);
  block.ToggleCyclic();
  host->RunFor(15);
  const std::size_t others = 3;  // of the second block
  block.StartMeasurement(*host);
  EXPECT_EQ(block.Activity(), 0u);
  EXPECT_THAT(host->timers, SizeIs(others + 3));
}

// Rows are counted in the list, whatever of it takes part.
TEST_F(GeneratorTest, ARowThatIsDisabledUnderCyclicTransmissionLeavesTheOthersTheirPlaces) {
  auto& disabled = first->AddCyclicSync(1000, 1000);
  auto& broken = first->AddPdo(kCyclicList, "uint:1", 1);
  broken.record.cycle_ms = 10;
  first->AddPause(1000);
  block.ToggleCyclic();
  host->RunFor(50);
  disabled.SetEnabled(0);
  block.ToggleSequence();
  broken.record.data = "uint:x";
  host->RunFor(50);
  EXPECT_THAT(first->failed, ElementsAre("1/1"));
}

// A server's answer, as the host delivers it.
NSdk::CanFrame Answer(std::initializer_list<std::uint8_t> bytes, std::uint32_t identifier = 0x581) {
  NSdk::CanFrame frame;
  frame.identifier = identifier;
  std::copy(bytes.begin(), bytes.end(), frame.data);
  frame.flags = 8;
  return frame;
}

TEST_F(GeneratorTest, AnSdoTransferHoldsTheSequenceUntilItsAnswer) {
  auto& upload = first->Add<ZSDOItemInfo>(kSequenceList).record;
  upload.upload = 1;
  upload.index = 0x1018;
  upload.subIndex = 4;
  auto& download = first->Add<ZSDOItemInfo>(kSequenceList).record;
  download.data = "E803";
  download.objectSize = 2;
  download.index = 0x1017;
  first->Add<ZSyncItemInfo>(kSequenceList);
  block.ToggleSequence();
  host->RunFor(100);
  EXPECT_THAT(host->TakeSent(), ElementsAre("10: 601 [8] 40 18 10 04 00 00 00 00"));
  block.OnFrame(Answer({0x43, 0x18, 0x10, 0x04, 1, 2, 3, 4}, 0x582));
  host->RunFor(100);
  EXPECT_THAT(host->TakeSent(), IsEmpty()) << "another server has answered";
  block.OnFrame(Answer({0x43, 0x18, 0x10, 0x04, 1, 2, 3, 4}));
  host->RunFor(20);
  EXPECT_THAT(host->TakeSent(), ElementsAre("220: 601 [8] 2B 17 10 00 E8 03 00 00"));
  EXPECT_EQ(download.data, "bytearr:E803");
  block.OnFrame(Answer({0x80, 0x17, 0x10, 0, 0, 0, 2, 6}));
  host->RunFor(20);
  EXPECT_THAT(host->TakeSent(), ElementsAre("240: 80 [0]")) << "an abort does not end the sequence";
  EXPECT_THAT(first->transfers,
              ElementsAre("0/0 result 0, 4 bytes, 00000000", "0/1 result 1, 2 bytes, 06020000"));
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(GeneratorTest, AnSdoWithoutAnswerEndsWithItsTimeOut) {
  first->generator.Numbers().sdoTimeout = 100000;  // longer than the engine can count
  first->Add<ZSDOItemInfo>(kSequenceList).record.upload = 1;
  first->Add<ZSyncItemInfo>(kSequenceList);
  block.ToggleSequence();
  host->RunFor(65000);
  EXPECT_THAT(host->TakeSent(), SizeIs(1));
  host->RunFor(1000);
  EXPECT_THAT(host->TakeSent(),
              ElementsAre(HasSubstr("601 [8] 80 00 10 00 00 00 04 05"), HasSubstr("80 [0]")));
  EXPECT_THAT(first->transfers, ElementsAre("0/0 result 1, 0 bytes, 05040000"));
  host->RunFor(1000);
  EXPECT_EQ(block.Activity(), 0u);
}

TEST_F(GeneratorTest, AnSdoThatCannotRunNeverHangsTheSequence) {
  first->Add<ZSDOItemInfo>(kSequenceList).record.nodeId = 0;  // the engine takes no such server
  first->Add<ZSyncItemInfo>(kSequenceList);
  block.ToggleSequence();
  host->RunFor(40);
  EXPECT_THAT(host->TakeSent(), ElementsAre("30: 80 [0]"));
  host->RunFor(100);

  // Closed under the sequence, as the end of cyclic transmission does it.
  first->generator.List(kSequenceList)[0]->SetEnabled(0);
  first->Add<ZSDOItemInfo>(kSequenceList).record.upload = 1;
  first->Add<ZNMTItemInfo>(kSequenceList);
  first->AddCyclicSync(100000, 100000);
  block.ToggleCyclic();
  block.ToggleSequence();
  host->RunFor(50);
  host->TakeSent();
  block.ToggleCyclic();
  host->RunFor(50);
  EXPECT_THAT(host->TakeSent(), ElementsAre(HasSubstr(": 0 [2] 01 01")));
  EXPECT_THAT(first->transfers,
              ElementsAre("0/0 result 2, 0 bytes, 00000000", "0/2 result 3, 0 bytes, 00000000"));
  EXPECT_EQ(block.Activity(), 0u);
  EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(GeneratorTest, AnSdoWhoseDataCannotBeEncodedFails) {
  auto& download = first->Add<ZSDOItemInfo>(kSequenceList).record;
  download.data = "float:1.5";
  download.objectSize = 5;
  block.ToggleSequence();
  host->RunFor(50);
  EXPECT_THAT(Messages(), SizeIs(1));
  EXPECT_THAT(host->TakeSent(), IsEmpty());
  EXPECT_EQ(block.Activity(), 0u);
}

}  // namespace
