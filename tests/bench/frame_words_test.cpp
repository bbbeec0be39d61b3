#include <gtest/gtest.h>

#include <algorithm>

#include "host/bench/frame_words.h"

namespace {

struct Row {
  std::uint32_t identifier;
  std::uint32_t flags;
  std::initializer_list<std::uint8_t> data;
  const char* words;
};

TEST(FrameWords, NameServiceNodeAndState) {
  using namespace NSdk;
  const Row rows[] = {
      {0x000, 2, {1, 0}, "NMT: start, all nodes"},
      {0x000, 2, {129, 5}, "NMT: reset node, node 5"},
      {0x000, 2, {77, 5}, "NMT, unknown command"},
      {0x000, 1, {1}, "NMT, unknown command"},
      {0x080, 0, {}, "SYNC"},
      {0x087, 8, {0x30, 0x81, 0x11}, "EMCY of node 7: error 8130h, error register 11h"},
      {0x087, 8, {0x00, 0x00, 0x00}, "EMCY of node 7: error reset"},
      {0x100, 0, {}, ""},
      {0x181, 0, {}, "TPDO 1 of node 1"},
      {0x4FF, 0, {}, "TPDO 4 of node 127"},
      {0x205, 0, {}, "RPDO 1 of node 5"},
      {0x205, kFrameRemote, {}, "RPDO 1 of node 5, requested"},
      {0x585, 8, {}, "SDO, node 5 answers"},
      {0x605, 8, {}, "SDO, request to node 5"},
      {0x705, 1, {0}, "node 5: boot-up"},
      {0x705, 1, {0x85}, "node 5: operational (guarding, toggle bit set)"},
      {0x705, 1, {9}, "node 5: state 9"},
      {0x705, 0, {}, "error control of node 5"},
      {0x705, kFrameRemote | 1, {}, "guarding request to node 5"},
      {0x780, 1, {5}, ""},
      {0x185, kFrameExtended, {}, ""},
  };
  for (const Row& row : rows) {
    NSdk::CanFrame frame;
    frame.identifier = row.identifier;
    frame.flags = row.flags;
    std::copy(row.data.begin(), row.data.end(), frame.data);
    EXPECT_EQ(NBench::FrameInWords(frame), row.words) << std::hex << row.identifier;
  }
}

}  // namespace
