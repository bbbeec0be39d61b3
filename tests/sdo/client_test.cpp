// The client layer: channels, what refuses a start, time-outs, queues and the local object dictionary.

#include "sdo/engine/abort_codes.h"
#include "sdo/engine/driver.h"
#include "tests/sdo/engine_owner.h"

namespace NSdoTest {
namespace {

using namespace NSdo;
using enum Kind;

TEST(SdoClient, CountsTimeOutsInTicksOf20Ms) {
  struct Case {
    std::uint16_t timeoutMs;
    int ticks;
  };
  for (const Case& each : {Case{0, 100}, {1, 1}, {20, 1}, {21, 2}, {50, 3}, {2000, 100}, {65535, 3277}}) {
    for (const Kind kind : {Upload, Download, BlockUpload, BlockDownload}) {
      SCOPED_TRACE(each.timeoutMs);
      Owner owner;
      owner.Start(kind, 20, each.timeoutMs);
      owner.sent.clear();
      owner.Ticks(each.ticks - 1);
      EXPECT_FALSE(owner.engine.finished);
      owner.Ticks(1);
      owner.ExpectAbort(0x05040000);
      EXPECT_TRUE(owner.engine.finished && !owner.engine.succeeded);
      EXPECT_EQ(owner.AbortCode(), 0x05040000u);
      owner.Ticks(1000);
      EXPECT_TRUE(owner.sent.empty());
      EXPECT_EQ(owner.completions, 1);
    }
  }
  EXPECT_EQ(SdoTimeoutOf(65535), 65535);
  EXPECT_EQ(SdoTimeoutOf(65536), 65535) << "wrapped it would be 0, that is 2000 ms";
  EXPECT_EQ(SdoTimeoutOf(1000000), 65535);
}

TEST(SdoClient, EveryAnswerRestartsTheTimeOut) {
  const struct {
    Kind kind;
    std::vector<const char*> answers;
  } cases[] = {{Upload, {"40", "00", "10", "00"}},
               {Download, {"60", "20", "30"}},
               {BlockUpload, {"C4 00 20 01", "01", "02", "03", "04", "81"}},
               {BlockDownload, {"A4 00 20 01 02", "A2 00", "A2 02", "A2 02"}}};
  for (const auto& each : cases) {
    Owner owner;
    owner.Start(each.kind, 35, 60);
    for (const char* answer : each.answers) {
      owner.Ticks(2);
      owner.Feed(answer);
      EXPECT_FALSE(owner.engine.finished) << answer;
    }
    owner.Ticks(2);
    EXPECT_FALSE(owner.engine.finished);
    owner.Ticks(1);
    EXPECT_TRUE(owner.engine.finished);
  }
}

TEST(SdoClient, RefusesAStartInTheOrderOfItsChecks) {
  Owner owner;
  SdoEngine& engine = owner.engine;
  std::uint8_t data[8] = {};
  const auto start = [&](std::uint8_t channel) {
    const SdoStatus status = SdoInitiateUpload(engine, channel, 0x1018, 1, sizeof data, data);
    EXPECT_EQ(SdoInitiateDownload(engine, channel, 0x1018, 1, sizeof data, data), status);
    EXPECT_EQ(SdoInitiateBlockUpload(engine, channel, 0x1018, 1, sizeof data, data), status);
    EXPECT_EQ(SdoInitiateBlockDownload(engine, channel, 0x1018, 1, sizeof data, data), status);
    return status;
  };
  engine.nodeState = kNodeStopped;
  EXPECT_EQ(start(0), SDO_E_STATE);
  engine.nodeState = kNodePreOperational;
  EXPECT_EQ(start(0), SDO_E_ARG);
  EXPECT_EQ(start(2), SDO_E_NO_CHANNEL);
  EXPECT_EQ(start(1), SDO_E_NOT_CONFIGURED);
  EXPECT_EQ(SdoInitiateUpload(engine, 1, 0x1018, 1, 8, nullptr), SDO_E_ARG);
  ASSERT_EQ(SdoConfigureChannel(engine, 1, kResponseCobId, kRequestCobId, 0, 5), SDO_OK);
  ASSERT_EQ(engine.filter.Set(kResponseCobId, 1), SDO_OK);
  EXPECT_EQ(start(1), SDO_E_COBID_IN_USE);
  engine.filter.Clear(kResponseCobId);
  EXPECT_TRUE(owner.sent.empty());
  EXPECT_EQ(SdoInitiateUpload(engine, 1, 0x1018, 1, sizeof data, data), SDO_OK);
  EXPECT_EQ(start(1), SDO_E_BUSY);
  SdoClientFree(engine);
  EXPECT_EQ(start(1), SDO_E_ARG);
  EXPECT_EQ(SdoClientFree(engine), SDO_E_NO_CLIENT);
}

TEST(SdoClient, ARefusedStartIsToldAndNeverFinishes) {
  Owner owner;
  std::uint8_t byte = 0;
  EXPECT_EQ(SdoRead(owner.engine, 0, 0x1000, 0, &byte, 1, 0x585, 0x605, 0, 0), 1);
  EXPECT_EQ(owner.engine.startStatus, SDO_E_ARG);
  EXPECT_FALSE(owner.engine.finished);
  EXPECT_TRUE(owner.sent.empty());
  SdoClose(owner.engine);
  EXPECT_EQ(SdoRead(owner.engine, 5, 0x1000, 0, &byte, 1, 0x585, 0x605, 0, 0), 0);
  EXPECT_EQ(SdoFeed(owner.engine, {}), 0);
  EXPECT_EQ(SdoClose(owner.engine), 0);
}

TEST(SdoClient, ConfiguresChannels) {
  Owner owner;
  SdoEngine& engine = owner.engine;
  const auto configure = [&engine](std::uint8_t channel, std::uint32_t rx, std::uint32_t tx,
                                   std::uint8_t node) {
    return SdoConfigureChannel(engine, channel, rx, tx, 100, node);
  };
  ASSERT_EQ(SdoCreateChannel(engine, 128), SDO_OK);
  EXPECT_EQ(SdoCreateChannel(engine, 128), SDO_E_EXISTS);
  EXPECT_EQ(SdoCreateChannel(engine, 0), SDO_E_ARG);
  EXPECT_EQ(SdoCreateChannel(engine, 129), SDO_E_ARG);
  EXPECT_EQ(configure(2, 0x581, 0x601, 1), SDO_E_NO_CHANNEL);
  EXPECT_EQ(configure(1, 0x581, 0x581, 1), SDO_E_ARG);
  EXPECT_EQ(configure(1, 0x581, 0x601, 0), SDO_E_ARG);
  EXPECT_EQ(configure(1, 0x581, 0x601, 128), SDO_E_ARG);
  EXPECT_EQ(configure(1, 0x581, 0x601, 127), SDO_OK);
  EXPECT_EQ(configure(1, 0x582, 0x602, 2), SDO_E_CONFIGURED);
  EXPECT_EQ(configure(128, 0x601, 0x602, 2), SDO_E_COBID_IN_USE);
  EXPECT_EQ(configure(128, 0x582, 0x581, 2), SDO_E_COBID_IN_USE);
  EXPECT_EQ(configure(128, 0x582, 0x602, 2), SDO_OK);

  std::uint8_t found = 0;
  EXPECT_EQ(SdoFindChannelByNode(engine, 2, found), SDO_OK);
  EXPECT_EQ(found, 128);
  EXPECT_EQ(SdoFindChannelByNode(engine, 3, found), SDO_E_NOT_FOUND);
  EXPECT_EQ(SdoGetChannelNode(engine, 1, found), SDO_OK);
  EXPECT_EQ(found, 127);
  EXPECT_EQ(SdoGetChannelNode(engine, 2, found), SDO_E_NOT_FOUND);

  EXPECT_EQ(SdoReleaseChannel(engine, 1), SDO_OK);
  EXPECT_EQ(SdoFindChannel(engine, 1)->cobIdRx, 0x80000581u);
  EXPECT_EQ(configure(1, 0x581, 0x601, 1), SDO_OK) << "a released channel is configured anew";
  EXPECT_EQ(SdoDeleteChannel(engine, 128), SDO_OK);
  EXPECT_EQ(SdoDeleteChannel(engine, 128), SDO_E_NO_CHANNEL);
  EXPECT_EQ(SdoChannelExists(engine, 128), SDO_E_NO_CHANNEL);
}

// Several channels at once; a channel that goes away in mid-transfer takes nothing of the others with it.
TEST(SdoClient, KeepsTransfersOfChannelsApart) {
  Owner owner;
  SdoEngine& engine = owner.engine;
  std::uint8_t data[129][4] = {};
  for (std::uint8_t channel = 128; channel >= 2; --channel) {
    ASSERT_EQ(SdoCreateChannel(engine, channel), SDO_OK);
    // COB-IDs descend as channel numbers ascend: both lists have to sort.
    const std::uint32_t base = 0x280u - channel;
    ASSERT_EQ(SdoConfigureChannel(engine, channel, base, base + 0x200, 0, 1), SDO_OK);
    ASSERT_EQ(SdoInitiateUpload(engine, channel, 0x1000, 0, 4, data[channel]), SDO_OK);
  }
  EXPECT_EQ(SdoDeleteChannel(engine, 64), SDO_OK);
  EXPECT_EQ(SdoReleaseChannel(engine, 65), SDO_OK);
  for (unsigned channel = 2; channel <= 128; ++channel) {
    SdoFrame answer = NTest::SdoFrame(0x280u - channel, "4F 00 10 00");
    answer.data[4] = static_cast<std::uint8_t>(channel);
    SdoFeed(engine, answer);
    const bool isGone = channel == 64 || channel == 65;
    EXPECT_EQ(data[channel][0], isGone ? 0 : channel);
  }
  EXPECT_EQ(owner.completions, 125);
}

TEST(SdoClient, StartsAnewWhileATransferRuns) {
  Owner owner;
  owner.Start(Upload, 4);
  owner.Start(Download, 4);
  EXPECT_EQ(owner.engine.startStatus, SDO_OK);
  owner.Play("> 40 00 20 01 > 23 00 20 01 01 02 03 04 < 60 00 20 01");
  EXPECT_EQ(owner.completions, 1);
  // An open engine that is opened again starts afresh too.
  owner.Start(Upload, 4);
  SdoOpen(owner.engine, 4);
  EXPECT_TRUE(owner.engine.ready);
  owner.Feed("43 00 20 01");
  EXPECT_FALSE(owner.engine.finished);
}

TEST(SdoClient, AbortsAtTheOwnersWish) {
  Owner owner;
  EXPECT_EQ(SdoAbort(owner.engine, 1, 31), SDO_E_ARG);
  EXPECT_EQ(SdoAbort(owner.engine, 2, 26), SDO_E_NO_CHANNEL);
  EXPECT_EQ(SdoAbort(owner.engine, 1, 26), SDO_E_BUSY);
  owner.Start(Upload, 4);
  owner.sent.clear();
  std::uint32_t code = 1;
  EXPECT_EQ(SdoGetAbortCode(owner.engine, 1, code), SDO_E_ARG) << "not while a transfer runs";
  EXPECT_EQ(SdoAbort(owner.engine, 1, 30), SDO_OK);
  owner.ExpectAbort(0x08000023);
  EXPECT_EQ(owner.completions, 1);
  EXPECT_EQ(SdoGetAbortCode(owner.engine, 1, code), SDO_OK);
  EXPECT_EQ(code, 0x08000023u);
  owner.engine.nodeState = kNodeStopped;
  EXPECT_EQ(SdoAbort(owner.engine, 1, 26), SDO_E_STATE);
}

TEST(SdoClient, AStoppedNodeDropsItsFrames) {
  Owner owner;
  owner.Start(Upload, 99);
  owner.sent.clear();
  owner.engine.nodeState = kNodeStopped;
  owner.Feed("40 00 20 01");
  EXPECT_TRUE(owner.sent.empty());
  owner.engine.nodeState = kNodeOperational;
  SdoDrainTransmit(owner.engine);
  EXPECT_TRUE(owner.sent.empty()) << "dropped, not kept";
}

TEST(SdoClient, KeepsFramesForABusThatIsBusy) {
  Owner owner;
  owner.keep = true;
  owner.Start(BlockDownload, 7 * 60);
  EXPECT_FALSE(owner.engine.finished);
  owner.keep = false;
  SdoDrainTransmit(owner.engine);
  owner.Play("> C6 00 20 01 A4 01");

  // 49 segments of the sub-block find room; the next one does not, and the sub-block shrinks by one.
  owner.keep = true;
  owner.Feed("A4 00 20 01 3C");
  EXPECT_EQ(SdoFindChannel(owner.engine, 1)->blockSize, 59);
  EXPECT_FALSE(owner.engine.finished);
  // A step that finds no room ends the transfer.
  owner.Feed("60");
  EXPECT_TRUE(owner.engine.finished && !owner.engine.succeeded);
  EXPECT_EQ(SdoInitiateUpload(owner.engine, 1, 0x1000, 0, 4, owner.buffer.data()), SDO_E_SEND);
  EXPECT_EQ(SdoResultOf(owner.engine).state, SdoState::Idle);
  owner.keep = false;
  SdoDrainTransmit(owner.engine);
  ASSERT_EQ(owner.sent.size(), 49u);
  for (std::uint8_t i = 0; i < 49; ++i) EXPECT_EQ(owner.sent[i].data[0], i + 1);
  EXPECT_EQ(SdoInitiateUpload(owner.engine, 1, 0x1000, 0, 4, owner.buffer.data()), SDO_OK);
}

// A bus that answers while the request is still being sent.
TEST(SdoClient, TakesAnswersFromWithinTheTransmitHook) {
  struct Echo {
    SdoEngine engine;
    int segments = 0;
  } echo;
  echo.engine.hooks.owner = &echo;
  echo.engine.hooks.transmit = [](void* self, const SdoFrame& frame) {
    auto& server = *static_cast<Echo*>(self);
    const char* answer = "60";
    if (frame.data[0] != 0x21) answer = (frame.data[0] & 0x10) != 0 ? "30" : "20";
    ++server.segments;
    SdoFeed(server.engine, NTest::SdoFrame(kResponseCobId, answer));
    return SdoSent::Accepted;
  };
  SdoOpen(echo.engine, 0);
  const Bytes data = Counting(70000);
  SdoWrite(echo.engine, 5, 0x2000, 1, data.data(), 70000, kResponseCobId, kRequestCobId, 0, 0);
  EXPECT_TRUE(echo.engine.succeeded);
  EXPECT_EQ(echo.segments, 1 + 10000);
}

TEST(SdoClient, TheCompletionHookMayStartTheNextTransfer) {
  Owner owner;
  owner.engine.hooks.completed = [](void* self, std::uint8_t channel, std::uint16_t index, std::uint8_t,
                                    void*, bool) {
    auto& next = *static_cast<Owner*>(self);
    if (++next.completions == 2) return;
    EXPECT_EQ(SdoInitiateUpload(next.engine, channel, static_cast<std::uint16_t>(index + 1), 0, 4,
                                next.buffer.data()),
              SDO_OK);
  };
  owner.Start(Upload, 4);
  owner.Play("> 40 00 20 01 < 4F 00 20 01 01 > 40 01 20 00 < 4F 01 20 00 02");
  EXPECT_EQ(owner.completions, 2);
}

TEST(SdoClient, RunsOnADriverOfTheOwner) {
  struct Driver {
    bool opens = true, accepts = true;
    int closed = 0;
    std::deque<SdoFrame> received;
  } driver;
  SdoEngine engine;
  engine.hooks.owner = &driver;
  SdoOpen(engine, 0);
  EXPECT_FALSE(engine.ready) << "there is no way out for frames";
  EXPECT_EQ(SdoDriverInit(engine), SDO_E_DRIVER_INIT);
  engine.hooks.transmit = [](void*, const SdoFrame&) { return SdoSent::Accepted; };
  engine.hooks.openDriver = [](void* d) { return static_cast<Driver*>(d)->opens ? d : nullptr; };
  engine.hooks.configureDriver = [](void* d, void*) { return static_cast<Driver*>(d)->accepts; };
  engine.hooks.closeDriver = [](void* d, void*) { ++static_cast<Driver*>(d)->closed; };
  engine.hooks.readFrame = [](void* d, void*, SdoFrame& frame) {
    auto& received = static_cast<Driver*>(d)->received;
    if (received.empty()) return false;
    frame = received.front();
    received.pop_front();
    return true;
  };
  driver.opens = false;
  EXPECT_EQ(SdoDriverInit(engine), SDO_E_DRIVER_OPEN);
  driver.opens = true;
  driver.accepts = false;
  EXPECT_EQ(SdoDriverInit(engine), SDO_E_DRIVER_CONFIG);
  EXPECT_EQ(driver.closed, 1) << "a driver that refuses its configuration is closed again";
  driver.accepts = true;
  SdoOpen(engine, 0);
  ASSERT_TRUE(engine.ready);
  Bytes data(700);
  SdoRead(engine, 5, 0x1000, 0, data.data(), 700, kResponseCobId, kRequestCobId, 0, 1);
  // More frames than the receive queue holds, in one go.
  driver.received.push_back(NTest::SdoFrame(kResponseCobId, "C0 00 10 00"));
  for (int i = 0; i < 100; ++i) driver.received.push_back(NTest::SdoFrame(kResponseCobId, ""));
  for (std::size_t i = 0; i < 100; ++i) driver.received[i + 1].data[0] = static_cast<std::uint8_t>(i % 8 + 1);
  driver.received.back().data[0] |= 0x80;
  driver.received.push_back(NTest::SdoFrame(kResponseCobId, "C1"));
  SdoPoll(engine);
  EXPECT_TRUE(engine.succeeded);
  EXPECT_EQ(SdoResultOf(engine).transferred, 700u);
  SdoClose(engine);
  EXPECT_EQ(driver.closed, 2);
}

class ClientParameters : public testing::Test {
 protected:
  std::uint8_t Read(std::uint8_t subindex, std::uint32_t& value, std::uint32_t room = 4) {
    std::uint8_t data[4] = {};
    std::uint8_t reason = 0;
    const SdoStatus status = SdoOdRead(mOwner.engine, 0x1280, subindex, room, data, reason);
    EXPECT_EQ(status, reason == 0 ? SDO_OK : SDO_E_OD_READ);
    value = 0;
    for (std::uint32_t i = 0; reason == 0 && i < room; ++i) value |= std::uint32_t{data[i]} << (8 * i);
    return reason;
  }
  std::uint8_t Write(std::uint8_t subindex, std::uint32_t value, std::uint32_t size = 4) {
    std::uint8_t data[4];
    for (int i = 0; i < 4; ++i) data[i] = static_cast<std::uint8_t>(value >> (8 * i));
    std::uint8_t reason = 0;
    const SdoStatus status = SdoOdWrite(mOwner.engine, 0x1280, subindex, size, data, reason);
    EXPECT_EQ(status, reason == 0 ? SDO_OK : SDO_E_OD_WRITE);
    return reason;
  }
  Owner mOwner;
};

TEST_F(ClientParameters, AreReadAndWrittenThroughTheDictionary) {
  SdoCreateChannel(mOwner.engine, 2);
  SdoConfigureChannel(mOwner.engine, 2, 0x586, 0x606, 0, 6);
  struct Case {
    std::uint8_t subindex;
    std::uint32_t value;
    std::uint32_t size;
    std::uint8_t reason;
    std::uint32_t after;  // what sub-index reads then
  };
  const Case cases[] = {
      {0, 3, 1, 10, 3},
      {1, 0x605, 2, 17, 0x80000000},       // size
      {1, 0x80000605, 4, 0, 0x80000000},   // not valid before and after: accepted, not stored
      {1, 0x20000605, 4, 21, 0x80000000},  // 29 bits
      {1, 0, 4, 23, 0x80000000},           //
      {1, 0x586, 4, 28, 0x80000000},       // of the other channel, in the other direction
      {1, 0x605, 4, 0, 0x605},             //
      {1, 0x605, 4, 0, 0x605},             // the same again
      {1, 0x607, 4, 28, 0x605},            // valid to valid
      {2, 0x585, 4, 0, 0x585},             //
      {1, 0x80000607, 4, 0, 0x80000607},   // made not valid, as given
      {1, 0x607, 4, 0, 0x607},             //
      {3, 5, 4, 17, 0},                    //
      {3, 0, 1, 21, 0},
      {3, 128, 1, 21, 0},
      {3, 127, 1, 0, 127},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(testing::Message() << "sub " << int{each.subindex} << " := " << std::hex << each.value);
    EXPECT_EQ(Write(each.subindex, each.value, each.size), each.reason);
    std::uint32_t value = 0;
    const std::uint32_t room = each.subindex == 1 || each.subindex == 2 ? 4 : 1;
    EXPECT_EQ(Read(each.subindex, value, room), 0);
    EXPECT_EQ(value, each.after);
  }
  EXPECT_EQ(Write(4, 0), 20);
  std::uint32_t value = 0;
  EXPECT_EQ(Read(4, value), 20);
  EXPECT_EQ(Read(1, value, 3), 17) << "no room for it";

  // What was set through the dictionary is good for a transfer.
  std::uint8_t data[4] = {};
  EXPECT_EQ(SdoInitiateUpload(mOwner.engine, 1, 0x1000, 0, 4, data), SDO_OK);
  EXPECT_EQ(mOwner.sent.back().identifier, 0x607u);
}

TEST_F(ClientParameters, ResetTheTimeOutOnceBothDirectionsAreValid) {
  SdoConfigureChannel(mOwner.engine, 1, kResponseCobId, kRequestCobId, 100, 5);
  const SdoChannel& ch = *SdoFindChannel(mOwner.engine, 1);
  Write(1, 0x80000605);
  Write(2, 0x80000585);
  Write(1, 0x605);
  EXPECT_EQ(ch.timeoutMs, 100);
  Write(2, 0x585);
  EXPECT_EQ(ch.timeoutMs, 2000);
}

// The COB-ID under which a transfer receives must not get lost when the channel's own is changed.
TEST_F(ClientParameters, MayChangeDuringATransfer) {
  mOwner.Start(Upload, 4);
  EXPECT_EQ(Write(2, 0x80000585), 0);
  EXPECT_EQ(Write(2, 0x590), 0);
  mOwner.Feed("4F 00 20 01 01");
  EXPECT_TRUE(mOwner.engine.succeeded);
  EXPECT_EQ(mOwner.engine.filter.Flags(kResponseCobId), 0);
  EXPECT_EQ(mOwner.engine.filter.Flags(0x590), 0);
}

TEST(SdoDictionary, ServesEntriesOfTheOwner) {
  SdoEngine engine;
  std::uint8_t reason = 99;
  std::uint32_t size = 1;
  std::uint8_t data[1] = {7};
  EXPECT_EQ(SdoOdRead(engine, 0x2000, 0, size, data, reason), SDO_E_OD_MISSING);
  ASSERT_EQ(SdoOdCreate(engine), SDO_OK);
  EXPECT_EQ(SdoOdRead(engine, 0x2000, 0, size, data, reason), SDO_E_OD_NO_ENTRY);

  SdoOdEntry entry;
  entry.index = 0x2034;
  entry.access = kOdReadable;
  entry.read = [](SdoEngine& e, std::uint8_t low, std::uint8_t sub, std::uint32_t&, std::uint8_t* to) {
    *to = static_cast<std::uint8_t>(low + sub);
    return static_cast<std::uint8_t>(SdoOdFree(e) == SDO_E_OD_FREE ? 0 : 15);  // not from in here
  };
  const SdoOdEntry* registered = SdoOdRegister(engine, entry);
  ASSERT_NE(registered, nullptr);
  EXPECT_EQ(SdoOdRegister(engine, {nullptr, nullptr, 0x2034, 0}), registered) << "the index is taken";
  EXPECT_EQ(SdoOdRead(engine, 0x2034, 2, size, data, reason), SDO_OK);
  EXPECT_EQ(data[0], 0x36);
  EXPECT_EQ(reason, 99) << "untouched on success";
  EXPECT_EQ(SdoOdWrite(engine, 0x2034, 2, size, data, reason), SDO_E_OD_NO_ENTRY) << "no callback";
  entry.index = 0x2033;
  entry.access = 0;
  SdoOdRegister(engine, entry);
  EXPECT_EQ(SdoOdRead(engine, 0x2033, 0, size, data, reason), SDO_E_OD_READ);
  EXPECT_EQ(reason, 9);
  EXPECT_EQ(SdoOdRemove(engine, 0x2034, 0), SDO_OK);
  EXPECT_EQ(SdoOdRemove(engine, 0x2034, 0), SDO_E_OD_NO_ENTRY);
  EXPECT_EQ(SdoOdFree(engine), SDO_OK);
}

}  // namespace
}  // namespace NSdoTest
