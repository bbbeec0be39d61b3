#include "tests/sdo/engine_owner.h"

#include <cstdio>
#include <numeric>
#include <sstream>

namespace NSdoTest {

using namespace NSdo;

SdoFrame Frame(std::uint32_t cobId, const std::string& bytes) {
  SdoFrame frame;
  frame.identifier = cobId & 0x1FFFFFFF;
  frame.flags = 8 | ((cobId & 0x20000000) != 0 ? NSdk::kFrameExtended : 0);
  std::istringstream text(bytes);
  unsigned value = 0;
  for (std::uint8_t& byte : frame.data) {
    if (text >> std::hex >> value) byte = static_cast<std::uint8_t>(value);
  }
  return frame;
}

std::string Text(const SdoFrame& frame) {
  char text[64];
  std::snprintf(text, sizeof text, "%X:", frame.identifier);
  std::string all = text;
  for (const std::uint8_t byte : frame.data) {
    std::snprintf(text, sizeof text, " %02X", byte);
    all += text;
  }
  return all;
}

Bytes Counting(std::size_t size) {
  Bytes bytes(size);
  std::iota(bytes.begin(), bytes.end(), std::uint8_t{1});
  return bytes;
}

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

void Owner::Feed(const std::string& bytes) { SdoFeed(engine, Frame(kResponseCobId, bytes)); }

void Owner::Ticks(int count) {
  for (; count > 0; --count) SdoTick(engine);
}

void Owner::Play(const std::string& script) {
  for (std::size_t place = 0; place < script.size();) {
    const std::size_t next = std::min(script.find_first_of("<>", place + 1), script.size());
    const std::string bytes = script.substr(place + 1, next - place - 1);
    if (script[place] == '>') {
      ExpectSent(bytes);
    } else {
      ASSERT_TRUE(sent.empty()) << "not in the script: " << Text(sent.front());
      Feed(bytes);
    }
    place = next;
  }
  EXPECT_TRUE(sent.empty()) << "not in the script: " << Text(sent.front());
}

void Owner::ExpectSent(const std::string& bytes) {
  ASSERT_FALSE(sent.empty()) << "missing: " << bytes;
  EXPECT_EQ(Text(sent.front()), Text(Frame(kRequestCobId, bytes)));
  EXPECT_EQ(sent.front().flags, 8u);
  sent.pop_front();
}

void Owner::ExpectAbort(std::uint32_t code) {
  SdoFrame frame = Frame(kRequestCobId, "80 00 20 01");
  for (int i = 0; i < 4; ++i) frame.data[4 + i] = static_cast<std::uint8_t>(code >> (8 * i));
  ASSERT_EQ(sent.size(), 1u);
  EXPECT_EQ(Text(sent.front()), Text(frame));
  sent.pop_front();
}

}  // namespace NSdoTest
