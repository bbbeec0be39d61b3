#include "tests/sdo/engine_owner.h"

namespace NSdoTest {

using namespace NSdo;

Owner::Owner(std::uint8_t blockSize) {
  engine.hooks.owner = this;
  engine.hooks.transmit = [](void* self, const SdoFrame& frame) {
    auto& owner = *static_cast<Owner*>(self);
    if (owner.keep) return SdoSent::Keep;
    owner.sent.push_back(frame);
    return SdoSent::Accepted;
  };
  engine.hooks.completed = [](void* self, std::uint8_t, std::uint16_t, std::uint8_t, void*, bool) {
    ++static_cast<Owner*>(self)->completions;
  };
  SdoOpen(engine, blockSize);
}

void Owner::Start(Kind kind, std::uint32_t size, std::uint16_t timeoutMs) {
  const bool upload = kind == Kind::Upload || kind == Kind::BlockUpload;
  const std::uint16_t block = kind == Kind::BlockUpload || kind == Kind::BlockDownload;
  buffer = upload ? Bytes(size, 0xEE) : Counting(size);
  if (upload) {
    SdoRead(engine, 5, 0x2000, 1, buffer.data(), size, kResponseCobId, kRequestCobId, timeoutMs, block);
  } else {
    SdoWrite(engine, 5, 0x2000, 1, buffer.data(), size, kResponseCobId, kRequestCobId, timeoutMs, block);
  }
}

void Owner::Feed(const std::string& bytes) { SdoFeed(engine, NTest::SdoFrame(kResponseCobId, bytes)); }

void Owner::Ticks(int count) {
  for (; count > 0; --count) SdoTick(engine);
}

void Owner::Play(const std::string& script) {
  const auto feed = [this](const std::string& bytes) {
    EXPECT_TRUE(sent.empty()) << "not in the script: " << Text(sent.front());
    Feed(bytes);
  };
  NTest::ForEachFrame(
      script, [this](const std::string& bytes) { ExpectSent(bytes); }, feed);
  EXPECT_TRUE(sent.empty()) << "not in the script: " << Text(sent.front());
}

void Owner::ExpectSent(const std::string& bytes) {
  ASSERT_FALSE(sent.empty()) << "missing: " << bytes;
  EXPECT_EQ(Text(sent.front()), Text(NTest::SdoFrame(kRequestCobId, bytes)));
  EXPECT_EQ(sent.front().flags, 8u);
  sent.pop_front();
}

void Owner::ExpectAbort(std::uint32_t code) {
  SdoFrame frame = NTest::SdoFrame(kRequestCobId, "80 00 20 01");
  for (int i = 0; i < 4; ++i) frame.data[4 + i] = static_cast<std::uint8_t>(code >> (8 * i));
  ASSERT_EQ(sent.size(), 1u);
  EXPECT_EQ(Text(sent.front()), Text(frame));
  sent.pop_front();
}

}  // namespace NSdoTest
