// Engine and an independent server against each other: what goes in comes out, or both end with an abort.

#include <random>

#include "tests/sdo/engine_owner.h"
#include "tests/sdo/test_server.h"

namespace NSdoTest {
namespace {

using namespace NSdo;

Bytes RandomBytes(std::mt19937& random, std::size_t size) {
  Bytes bytes(size);
  for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
  return bytes;
}

/// What happens to the frames on their way: nothing, or one of them is lost or comes twice.
struct Mishap {
  int frame = -1;  // counted in both directions
  bool twice = false;
};

struct Outcome {
  Bytes received;  // by whoever receives in this direction
  bool succeeded = false;
  std::uint32_t clientAbort = 0;
  std::uint32_t serverAbort = 0;
  std::string complaints;
  int frames = 0;
};

class Bus {
 public:
  Bus(Owner& owner, TestServer& server, Mishap mishap) : mOwner(owner), mServer(server), mMishap(mishap) {}

  // Ticks only when the bus is silent; a transfer ends at the latest by its time-out.
  void Run() {
    for (int silence = 0; !mOwner.engine.finished && silence < 200;) {
      if (!Move()) {
        SdoTick(mOwner.engine);
        ++silence;
      }
    }
    while (Move()) {
    }
  }
  int Frames() const { return mFrames; }

 private:
  bool Move() {
    if (!mOwner.sent.empty()) {
      const SdoFrame frame = mOwner.sent.front();
      mOwner.sent.pop_front();
      for (int n = Copies(); n > 0; --n) mServer.Take(frame);
      return true;
    }
    if (mServer.answers.empty()) return false;
    const SdoFrame frame = mServer.answers.front();
    mServer.answers.pop_front();
    for (int n = Copies(); n > 0; --n) SdoFeed(mOwner.engine, frame);
    return true;
  }
  int Copies() { return mFrames++ != mMishap.frame ? 1 : mMishap.twice ? 2 : 0; }

  Owner& mOwner;
  TestServer& mServer;
  Mishap mMishap;
  int mFrames = 0;
};

Outcome Transfer(Kind kind, const Bytes& data, std::uint32_t capacity, std::uint8_t blockSize,
                 const ServerSettings& settings, Mishap mishap = {}) {
  Owner owner(blockSize);
  TestServer server(settings);
  const bool upload = kind == Kind::Upload || kind == Kind::BlockUpload;
  const std::uint16_t block = kind == Kind::BlockUpload || kind == Kind::BlockDownload;
  const auto size = static_cast<std::uint32_t>(data.size());
  // One guard byte in front and behind.
  Bytes buffer(capacity + 2, 0xEE);
  if (upload) {
    server.object = data;
    SdoRead(owner.engine, 5, 0x2000, 1, buffer.data() + 1, capacity, kResponseCobId, kRequestCobId, 0, block);
  } else {
    SdoWrite(owner.engine, 5, 0x2000, 1, data.data(), size, kResponseCobId, kRequestCobId, 0, block);
  }
  Bus bus(owner, server, mishap);
  bus.Run();

  EXPECT_TRUE(owner.engine.finished);
  EXPECT_EQ(owner.completions, 1);
  EXPECT_TRUE(buffer.front() == 0xEE && buffer.back() == 0xEE) << "wrote beside the buffer";
  const SdoResult result = SdoResultOf(owner.engine);
  Outcome outcome{server.object,    owner.engine.succeeded, result.abortCode,
                  server.abortCode, server.complaints,      bus.Frames()};
  if (upload && outcome.succeeded) {
    EXPECT_LE(result.transferred, capacity);
    outcome.received.assign(buffer.begin() + 1, buffer.begin() + 1 + result.transferred);
  }
  if (!upload && outcome.succeeded) {
    EXPECT_EQ(server.downloads, 1);
    EXPECT_EQ(result.transferred, size);
  }
  return outcome;
}

int CeilDiv(int value, int divisor) { return (value + divisor - 1) / divisor; }

// Frames on the bus, counted from the standard's sequences.
int FramesOf(Kind kind, int size, int blockSize) {
  const int segments = std::max(1, CeilDiv(size, 7));
  if (kind == Kind::BlockUpload && size <= 28) kind = Kind::Upload;  // the server switches
  if (kind == Kind::Upload || kind == Kind::Download) return size >= 1 && size <= 4 ? 2 : 2 + 2 * segments;
  // request, answer, segments with acknowledges, end and its answer; an upload has a start frame too
  return 2 + segments + CeilDiv(segments, blockSize) + 2 + (kind == Kind::BlockUpload ? 1 : 0);
}

TEST(SdoLoopback, CarriesEverySizeInEveryKind) {
  std::mt19937 random(3);
  for (const std::uint32_t size : {0u, 1u, 4u, 5u, 7u, 8u, 14u, 28u, 29u, 889u, 890u, 65536u, 1048576u}) {
    const Bytes data = RandomBytes(random, size);
    for (const Kind kind : {Kind::Upload, Kind::Download, Kind::BlockUpload, Kind::BlockDownload}) {
      for (const bool tellsSize : {true, false}) {
        SCOPED_TRACE(testing::Message() << size << " bytes, kind " << static_cast<int>(kind));
        const Outcome outcome =
            Transfer(kind, data, size, 127, {.tellsSize = tellsSize, .hasCrc = tellsSize, .blockSize = 127});
        EXPECT_TRUE(outcome.succeeded);
        EXPECT_TRUE(outcome.received == data);
        EXPECT_EQ(outcome.complaints, "");
        EXPECT_EQ(outcome.frames, FramesOf(kind, static_cast<int>(size), 127));
      }
    }
  }
}

struct Draw {
  explicit Draw(unsigned seed) : random(seed) {}
  unsigned Below(unsigned bound) { return static_cast<unsigned>(random() % bound); }
  bool Flip() { return Below(2) != 0; }

  Kind AKind() { return static_cast<Kind>(Below(4)); }
  ServerSettings Server() {
    ServerSettings settings;
    settings.tellsSize = Flip();
    settings.hasCrc = Flip();
    settings.hasBlockUpload = Below(4) != 0;
    settings.blockSize = static_cast<std::uint8_t>(1 + Below(127));
    settings.variesBlockSize = Flip();
    return settings;
  }
  std::uint8_t BlockSize() { return static_cast<std::uint8_t>(1 + Below(127)); }

  std::mt19937 random;
};

TEST(SdoLoopback, WhatGoesInComesOutOrBothAbort) {
  for (unsigned seed = 0; seed < 1500; ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Draw draw(seed);
    const Kind kind = draw.AKind();
    const Bytes data = RandomBytes(draw.random, draw.Below(draw.Flip() ? 40 : 3000));
    const auto size = static_cast<std::uint32_t>(data.size());
    ServerSettings settings = draw.Server();
    // One receiver in five is too small.
    const std::uint32_t room = draw.Below(5) != 0 ? size + draw.Below(20) : draw.Below(size + 1);
    const bool upload = kind == Kind::Upload || kind == Kind::BlockUpload;
    const bool expedited = !upload && kind == Kind::Download && size >= 1 && size <= 4;
    if (!upload) settings.capacity = room;

    const Outcome outcome = Transfer(kind, data, upload ? room : 0, draw.BlockSize(), settings);
    EXPECT_EQ(outcome.complaints, "");
    ASSERT_EQ(outcome.succeeded, room >= size || expedited);
    if (outcome.succeeded) {
      ASSERT_TRUE(outcome.received == data);
      ASSERT_EQ(outcome.clientAbort, 0u);
    } else {
      ASSERT_NE(outcome.clientAbort, 0u);
      ASSERT_EQ(outcome.clientAbort, outcome.serverAbort);
    }
  }
}

// With a frame lost or doubled a transfer may fail; one that claims to have succeeded has.
TEST(SdoLoopback, NeverSucceedsWithWrongData) {
  int succeeded = 0;
  for (unsigned seed = 0; seed < 3000; ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Draw draw(seed);
    const Kind kind = draw.AKind();
    const Bytes data = RandomBytes(draw.random, draw.Below(200));
    const auto size = static_cast<std::uint32_t>(data.size());
    ServerSettings settings = draw.Server();
    settings.hasCrc = true;  // without it nobody can notice a repeated sub-block
    settings.blockSize = static_cast<std::uint8_t>(1 + draw.Below(8));
    const Mishap mishap{static_cast<int>(draw.Below(40)), draw.Flip()};
    const Outcome outcome =
        Transfer(kind, data, size, static_cast<std::uint8_t>(1 + draw.Below(8)), settings, mishap);
    if (!outcome.succeeded) continue;
    ++succeeded;
    ASSERT_TRUE(outcome.received == data);
  }
  EXPECT_GT(succeeded, 1000);
}

}  // namespace
}  // namespace NSdoTest
