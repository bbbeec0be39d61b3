// Counts what the engine allocates, and lets allocations fail. The counting operator new is this program's
// own.

#include <cstdlib>
#include <new>

#include "sdo/engine/driver.h"
#include "tests/sdo/engine_owner.h"
#include "tests/sdo/test_server.h"

namespace {

long gAllocations = 0;
long gLiving = 0;
long gFailAt = -1;  // allocations to go until all of them fail; -1: none does

void* Allocate(std::size_t size) {
  if (gFailAt == 0) return nullptr;
  if (gFailAt > 0) --gFailAt;
  void* memory = std::malloc(size != 0 ? size : 1);
  if (memory != nullptr) {
    ++gAllocations;
    ++gLiving;
  }
  return memory;
}

void Release(void* memory) {
  if (memory == nullptr) return;
  --gLiving;
  std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) {
  if (void* memory = Allocate(size)) return memory;
  throw std::bad_alloc();
}
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return Allocate(size); }
void operator delete(void* memory) noexcept { Release(memory); }
void operator delete[](void* memory) noexcept { Release(memory); }
void operator delete(void* memory, std::size_t) noexcept { Release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { Release(memory); }
void operator delete(void* memory, const std::nothrow_t&) noexcept { Release(memory); }
void operator delete[](void* memory, const std::nothrow_t&) noexcept { Release(memory); }

namespace NSdoTest {
namespace {

using namespace NSdo;

/// Allocations within the engine's functions while a transfer runs from start to end.
long AllocationsOf(Kind kind, std::uint32_t size, std::uint32_t cobIdRx, std::uint32_t cobIdTx) {
  struct Wire {
    SdoFrame frames[200];
    int count = 0;
  } wire;
  SdoEngine engine;
  engine.hooks.owner = &wire;
  engine.hooks.transmit = [](void* self, const SdoFrame& frame) {
    auto& to = *static_cast<Wire*>(self);
    to.frames[to.count++] = frame;
    return SdoSent::Accepted;
  };
  SdoOpen(engine, 127);
  TestServer server({.tellsSize = false, .capacity = size});
  Bytes buffer = Counting(size);
  server.object = buffer;
  const std::uint16_t block = kind == Kind::BlockUpload || kind == Kind::BlockDownload;
  const bool upload = kind == Kind::Upload || kind == Kind::BlockUpload;

  long counted = -gAllocations;
  if (upload) {
    SdoRead(engine, 5, 0x2000, 1, buffer.data(), size, cobIdRx, cobIdTx, 0, block);
  } else {
    SdoWrite(engine, 5, 0x2000, 1, buffer.data(), size, cobIdRx, cobIdTx, 0, block);
  }
  counted += gAllocations;
  while (!engine.finished) {
    for (int i = 0; i < wire.count; ++i) {
      wire.frames[i].identifier = kRequestCobId;
      wire.frames[i].flags = 8;
      server.Take(wire.frames[i]);
    }
    wire.count = 0;
    for (; !server.answers.empty(); server.answers.pop_front()) {
      SdoFrame answer = server.answers.front();
      answer.identifier = cobIdRx & kCobIdIdentifier;
      if ((cobIdRx & kCobIdExtended) != 0) answer.flags |= NSdk::kFrameExtended;
      counted -= gAllocations;
      SdoFeed(engine, answer);
      SdoTick(engine);
      counted += gAllocations;
    }
  }
  EXPECT_TRUE(engine.succeeded);
  return counted;
}

TEST(SdoAllocation, NoneDuringATransfer) {
  for (const Kind kind : {Kind::Upload, Kind::Download, Kind::BlockUpload, Kind::BlockDownload}) {
    for (const std::uint32_t size : {4u, 20000u}) {
      EXPECT_EQ(AllocationsOf(kind, size, kResponseCobId, kRequestCobId), 0);
      EXPECT_EQ(AllocationsOf(kind, size, 0x3ABCDEF0, 0x3ABCDEF1), 0) << "29-bit identifiers";
    }
  }
}

void FailAfter(long allocations) { gFailAt = allocations; }
void FailNoMore() { gFailAt = -1; }

// Whichever allocation of opening fails, nothing leaks and the next attempt succeeds.
TEST(SdoAllocation, FailuresWhileOpeningLeaveACleanEngine) {
  int failures = 0;
  for (long n = 0;; ++n) {
    const long living = gLiving;
    bool opened = false;
    {
      SdoEngine engine;
      engine.hooks.transmit = [](void*, const SdoFrame&) { return SdoSent::Accepted; };
      FailAfter(n);
      SdoOpen(engine, 8);
      FailNoMore();
      opened = engine.ready;
      EXPECT_EQ(SdoClose(engine), opened ? 1 : 0);
      SdoOpen(engine, 8);
      EXPECT_TRUE(engine.ready) << "after failure " << n;
    }
    EXPECT_EQ(gLiving, living) << n;
    if (opened) break;
    ++failures;
  }
  EXPECT_GT(failures, 5);
}

TEST(SdoAllocation, FailuresOfTheClientLayerAreTold) {
  Owner owner;
  SdoEngine& engine = owner.engine;
  FailAfter(0);
  const SdoStatus noRecord = SdoCreateChannel(engine, 2);
  FailNoMore();
  EXPECT_EQ(noRecord, SDO_E_NOMEM);

  // The second transfer at a time makes the active list grow.
  std::uint8_t data[4] = {};
  for (std::uint8_t channel = 1; channel <= 2; ++channel) {
    if (channel == 2) {
      ASSERT_EQ(SdoCreateChannel(engine, channel), SDO_OK);
    }
    ASSERT_EQ(SdoConfigureChannel(engine, channel, 0x580u + channel, 0x600u + channel, 0, channel), SDO_OK);
  }
  ASSERT_EQ(SdoInitiateUpload(engine, 1, 0x1000, 0, 4, data), SDO_OK);
  FailAfter(0);
  const SdoStatus noRoom = SdoInitiateUpload(engine, 2, 0x1000, 0, 4, data);
  FailNoMore();
  EXPECT_EQ(noRoom, SDO_E_LIST);
  EXPECT_EQ(engine.filter.Flags(0x582), 0);
  EXPECT_EQ(SdoInitiateUpload(engine, 2, 0x1000, 0, 4, data), SDO_OK);

  // Channel 33 makes the channel list and the dictionary grow.
  for (std::uint8_t channel = 3; channel <= 33; ++channel) SdoCreateChannel(engine, channel);
  const long living = gLiving;
  for (long n = 0; n < 4; ++n) {
    FailAfter(n);
    const SdoStatus status = SdoCreateChannel(engine, 34);
    FailNoMore();
    EXPECT_NE(status, SDO_OK);
    // A list that has grown stays so; the channel and its entry are gone.
    EXPECT_LE(gLiving, living) << n;
    EXPECT_EQ(SdoChannelExists(engine, 34), SDO_E_NO_CHANNEL);
  }
  EXPECT_EQ(SdoCreateChannel(engine, 34), SDO_OK);
}

}  // namespace
}  // namespace NSdoTest
