// The pieces under the engine: CRC, ring queue, sorted list.

#include <gtest/gtest.h>

#include <random>
#include <set>

#include "sdo/engine/crc.h"
#include "sdo/engine/list.h"
#include "sdo/engine/queue.h"

namespace {

using namespace NSdo;

TEST(SdoCrc, IsThatOfBlockTransfers) {
  struct Case {
    std::vector<std::uint8_t> data;
    std::uint16_t crc;
  };
  const Case cases[] = {{{}, 0},
                        {{1, 2, 3, 4}, 0x0D03},
                        {{1, 2, 3, 4, 5, 6, 7}, 0x26B3},
                        {{0x05, 0x04, 0x8B, 0xA2, 0xE8, 0x1C, 0x7E}, 0x66E0},
                        {{'1', '2', '3', '4', '5', '6', '7', '8', '9'}, 0x31C3}};
  for (const Case& each : cases) EXPECT_EQ(SdoCrc(each.data.data(), each.data.size()), each.crc);

  // Bit by bit, over every length around the 8 and the 128 bytes that are taken at once.
  std::mt19937 random(1);
  for (std::size_t size = 0; size < 600; ++size) {
    std::vector<std::uint8_t> data(size);
    unsigned crc = 0;
    for (std::uint8_t& byte : data) {
      byte = static_cast<std::uint8_t>(random());
      crc ^= unsigned{byte} << 8;
      for (int bit = 0; bit < 8; ++bit) crc = (crc << 1 ^ ((crc & 0x8000) != 0 ? 0x11021u : 0u)) & 0xFFFF;
    }
    EXPECT_EQ(SdoCrc(data.data(), size), crc) << size;
  }
}

TEST(SdoQueue, HoldsOneFrameLessThanItsSlotsWhereverItStarts) {
  SdoQueue queue;
  for (std::uint32_t start = 0; start < 2 * SdoQueue::kCapacity; ++start) {
    ASSERT_TRUE(queue.IsEmpty());
    for (std::uint32_t i = 0; i < 49; ++i) ASSERT_TRUE(queue.Push({.identifier = i}));
    EXPECT_TRUE(queue.IsFull());
    EXPECT_FALSE(queue.Push({}));
    for (std::uint32_t i = 0; i < 49; ++i) {
      const SdoFrame* frame = queue.TakeRead();
      ASSERT_NE(frame, nullptr);
      EXPECT_EQ(frame->identifier, i);
      queue.CommitRead();
    }
    EXPECT_EQ(queue.TakeRead(), nullptr);
    queue.Push({});
    queue.TakeRead();
    queue.CommitRead();
  }
}

TEST(SdoQueue, GivesASlotToOneTakerAtATime) {
  SdoQueue queue;
  SdoFrame* slot = queue.TakeWrite();
  ASSERT_NE(slot, nullptr);
  EXPECT_EQ(queue.TakeWrite(), nullptr);
  queue.AbandonWrite();
  EXPECT_TRUE(queue.IsEmpty()) << "what is abandoned was never there";
  EXPECT_EQ(queue.TakeWrite(), slot);
  queue.CommitWrite();
  const SdoFrame* head = queue.TakeRead();
  EXPECT_EQ(queue.TakeRead(), nullptr);
  EXPECT_TRUE(queue.Push({})) << "the two directions do not lock each other";
  queue.AbandonRead();
  EXPECT_EQ(queue.TakeRead(), head) << "an abandoned frame stays at the head";
}

TEST(SdoQueue, AFramePassesAsIfItWereTheHead) {
  SdoQueue queue;
  for (int start = 0; start < SdoQueue::kCapacity; ++start) {
    ASSERT_TRUE(queue.IsIdle());
    queue.BeginPassing();
    EXPECT_FALSE(queue.IsIdle());
    for (std::uint32_t i = 1; i < 49; ++i) ASSERT_TRUE(queue.Push({.identifier = i}));
    EXPECT_FALSE(queue.Push({})) << "the last slot is for the frame that passes";
    EXPECT_EQ(queue.TakeRead(), nullptr);
    queue.EndPassing();
    queue.PutBack({.identifier = 0});
    std::uint32_t expected = 0;
    queue.ReadAll([&](const SdoFrame& frame) { return frame.identifier == expected++; });
    EXPECT_EQ(expected, 49u);
    queue.Push({});
    queue.ReadAll([](const SdoFrame&) { return true; });
  }
}

constexpr std::uint32_t Itself(const std::uint32_t& value) { return value; }

TEST(SdoList, FindsWhatASetFinds) {
  SdoList<std::uint32_t, &Itself> list;
  ASSERT_TRUE(list.Create());
  EXPECT_EQ(list.Capacity(), 1u);
  std::set<std::uint32_t> model;
  std::mt19937 random(2);
  for (int step = 0; step < 3000; ++step) {
    const auto key = static_cast<std::uint32_t>(random() % 200);
    std::uint32_t* place = list.Find(key);
    ASSERT_EQ(place != nullptr, model.count(key) != 0) << key;
    if (place == nullptr) {
      list.Insert(key);
      model.insert(key);
    } else if (step % 3 != 0) {
      list.Remove(place);
      model.erase(key);
    }
    ASSERT_TRUE(std::equal(list.begin(), list.end(), model.begin(), model.end()));
  }
  EXPECT_EQ(list.Capacity() % 32, 1u) << "grows by 32";
}

}  // namespace
