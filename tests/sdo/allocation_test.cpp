// Counts what the engine allocates, and lets allocations fail. The counting operator new is this program's
// own.

#include <array>
#include <cstdlib>
#include <new>
#include <span>
#include <utility>

#include "host/devices/device.h"
#include "host/devices/profile.h"
#include "sdo/engine/driver.h"
#include "tests/sdo/engine_owner.h"

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

// An engine and a simulated device on the same wire, whatever COB-IDs the engine uses.
class Wire final : private NDevices::FrameSink {
 public:
  Wire(std::uint32_t cobIdRx, std::uint32_t cobIdTx)
      : mCobIdRx(cobIdRx), mCobIdTx(cobIdTx), mDevice({}, NDevices::IoDeviceObjects(1), *this) {
    mEngine.hooks.owner = this;
    mEngine.hooks.transmit = [](void* self, const SdoFrame& frame) {
      auto& wire = *static_cast<Wire*>(self);
      wire.mRequests.at(wire.mCount++) = frame;
      return SdoSent::Accepted;
    };
    SdoOpen(mEngine, 127);
    mDevice.PowerOn({});
  }

  /// Allocations within the engine's functions while a transfer runs from start to end.
  long AllocationsOf(Kind kind, std::uint32_t size) {
    Bytes buffer(size);
    EXPECT_EQ(mDevice.SetValue({0x2002, 0}, buffer, {}), NDevices::AbortCode::None);
    mCounted = -gAllocations;
    Start(kind, buffer);
    mCounted += gAllocations;
    while (!mEngine.finished && mCount != 0) Exchange();
    EXPECT_TRUE(mEngine.finished && mEngine.succeeded);
    return mCounted;
  }

 private:
  void Send(const NSdk::CanFrame& frame) override {
    if (frame.identifier == 0x581) mAnswers.push_back(frame);
  }

  void Start(Kind kind, Bytes& buffer) {
    const auto size = static_cast<std::uint32_t>(buffer.size());
    const std::uint16_t block = kind == Kind::BlockUpload || kind == Kind::BlockDownload;
    if (kind == Kind::Upload || kind == Kind::BlockUpload) {
      SdoRead(mEngine, 1, 0x2002, 0, buffer.data(), size, mCobIdRx, mCobIdTx, 0, block);
    } else {
      SdoWrite(mEngine, 1, 0x2002, 0, buffer.data(), size, mCobIdRx, mCobIdTx, 0, block);
    }
  }

  void Exchange() {
    for (SdoFrame& request : std::span(mRequests).first(std::exchange(mCount, 0))) {
      request.identifier = 0x601;
      request.flags = 8;
      mDevice.OnFrame(request, {});
    }
    for (SdoFrame& answer : std::exchange(mAnswers, {})) {
      answer.identifier = mCobIdRx & kCobIdIdentifier;
      if ((mCobIdRx & kCobIdExtended) != 0) answer.flags |= NSdk::kFrameExtended;
      mCounted -= gAllocations;
      SdoFeed(mEngine, answer);
      SdoTick(mEngine);
      mCounted += gAllocations;
    }
  }

  const std::uint32_t mCobIdRx, mCobIdTx;
  std::array<SdoFrame, 200> mRequests;
  std::size_t mCount = 0;
  std::vector<SdoFrame> mAnswers;
  long mCounted = 0;
  NDevices::Device mDevice;
  SdoEngine mEngine;
};

TEST(SdoAllocation, NoneDuringATransfer) {
  for (const Kind kind : {Kind::Upload, Kind::Download, Kind::BlockUpload, Kind::BlockDownload}) {
    for (const std::uint32_t size : {4u, 20000u}) {
      EXPECT_EQ(Wire(kResponseCobId, kRequestCobId).AllocationsOf(kind, size), 0);
      EXPECT_EQ(Wire(0x3ABCDEF0, 0x3ABCDEF1).AllocationsOf(kind, size), 0) << "29-bit identifiers";
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
