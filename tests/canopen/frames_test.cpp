#include "canopen/frames.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <numeric>
#include <vector>

#include "canopen/flow_items.h"
#include "canopen/message_items.h"

namespace NCanopen {
namespace {

// "701 [1] FF", with "x" behind an extended identifier and "R" for a remote frame.
std::string Shown(const NSdk::CanFrame& frame) {
  char text[64];
  const unsigned dlc = frame.flags & NSdk::kFrameDlcMask;
  std::snprintf(text, sizeof text, "%X%s [%u]%s", frame.identifier,
                frame.flags & NSdk::kFrameExtended ? "x" : "", dlc,
                frame.flags & NSdk::kFrameRemote ? " R" : "");
  std::string shown = text;
  for (unsigned at = 0; at < 8; ++at) {
    std::snprintf(text, sizeof text, " %02X", frame.data[at]);
    if (at < dlc) {
      if (!(frame.flags & NSdk::kFrameRemote)) shown += text;
    } else {
      EXPECT_EQ(frame.data[at], 0) << "unused byte " << at;
    }
  }
  return shown;
}

template <class Item, class Change>
std::string Sent(Change change) {
  Item item(nullptr);
  change(item.record);
  const auto frame = FrameOf(item);
  return frame ? Shown(*frame) : "nothing";
}

TEST(Frames, OfItems) {
  EXPECT_EQ(Sent<ZSyncItemInfo>([](auto&) {}), "80 [0]");
  EXPECT_EQ(Sent<ZSyncItemInfo>([](auto& r) { r.cobId = 0x20000080; }), "80x [0]");
  EXPECT_EQ(Sent<ZSyncItemInfo>([](auto& r) { r.cobId = 0xBFFFFFFF; }), "1FFFFFFFx [0]");
  EXPECT_EQ(Sent<ZEmcyItemInfo>([](auto& r) {
              r.errorCode = 0x8130;
              r.errorRegister = 0x11;
              r.manufacturer = {1, 2, 3, 4, 5};
            }),
            "81 [8] 30 81 11 01 02 03 04 05");
  EXPECT_EQ(Sent<ZHBeatItemInfo>([](auto& r) { SetState(r, 5); }), "701 [1] 05");
  EXPECT_EQ(Sent<ZGuardingItemInfo>([](auto& r) { SetToggle(r, true); }), "701 [1] FF");
  EXPECT_EQ(Sent<ZNMTItemInfo>([](auto& r) { r.nodeId = 0; }), "0 [2] 01 00");
  EXPECT_EQ(Sent<ZNMTItemInfo>([](auto& r) { r.command = 129; }), "0 [2] 81 01");
  EXPECT_EQ(Sent<ZRTRItemInfo>([](auto& r) { r.dlc = 8; }), "181 [8] R");
  EXPECT_EQ(Sent<ZRTRItemInfo>([](auto& r) { r.dlc = 0x18; }), "181 [8] R");
  EXPECT_EQ(Sent<ZPauseItemInfo>([](auto&) {}), "nothing");
  EXPECT_EQ(Sent<ZSDOItemInfo>([](auto&) {}), "nothing");
}

TEST(Frames, PdoCountsItsBytesInFourBits) {
  std::vector<std::uint8_t> data(40);
  std::iota(data.begin(), data.end(), std::uint8_t{1});
  const auto sent = [&](std::size_t count) {
    return Shown(PdoFrame(0x20000181, std::span(data).first(count)));
  };
  EXPECT_EQ(sent(0), "181x [0]");
  EXPECT_EQ(sent(2), "181x [2] 01 02");
  EXPECT_EQ(sent(8), "181x [8] 01 02 03 04 05 06 07 08");
  EXPECT_EQ(sent(9), sent(8));
  EXPECT_EQ(sent(15), sent(8));
  EXPECT_EQ(sent(16), sent(0));
  EXPECT_EQ(sent(18), sent(2));
  EXPECT_EQ(sent(40), sent(8));
}

}  // namespace
}  // namespace NCanopen
