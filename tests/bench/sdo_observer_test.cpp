#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "host/bench/sdo_observer.h"

namespace {

using NBench::SdoObserver;
using NBench::SdoTransfer;
using testing::ElementsAre;
using testing::IsEmpty;

enum Side { Tx, Rx };  // the client's requests and the server's responses

struct Step {
  Side side;
  const char* bytes;  // hexadecimal, as a trace shows them
};

NSdk::CanFrame Frame(Side side, const std::string& bytes, unsigned node = 5) {
  NSdk::CanFrame frame;
  frame.identifier = (side == Tx ? 0x600 : 0x580) + node;
  frame.flags = 8;
  for (std::size_t i = 0; i * 3 < bytes.size() && i < 8; ++i) {
    frame.data[i] = static_cast<std::uint8_t>(std::stoul(bytes.substr(i * 3, 2), nullptr, 16));
  }
  return frame;
}

// A millisecond passes with every frame.
std::vector<std::string> Words(const std::vector<Step>& steps) {
  SdoObserver observer;
  std::vector<std::string> words;
  NRuntime::Time time{};
  for (const Step& step : steps) {
    for (const SdoTransfer& transfer : observer.OnFrame(1, Frame(step.side, step.bytes), time)) {
      words.push_back(NBench::InWords(transfer));
    }
    time += std::chrono::milliseconds(1);
  }
  for (const SdoTransfer& transfer : observer.Finish(time)) words.push_back(NBench::InWords(transfer));
  return words;
}

struct Script {
  std::vector<Step> steps;
  std::vector<std::string> words;
};

TEST(SdoObserver, FollowsEveryKindOfTransfer) {
  const Script scripts[] = {
      {{{Tx, "40 00 10 00"}, {Rx, "43 00 10 00 91 01 0F 00"}},
       {"SDO upload from node 5, 1000h sub 0, expedited: 4 bytes in 1.00 ms: 91 01 0F 00"}},
      {{{Tx, "2B 17 10 00 E8 03"}, {Rx, "60 17 10 00"}},
       {"SDO download to node 5, 1017h sub 0, expedited: 2 bytes in 1.00 ms: E8 03"}},
      {{{Tx, "40 08 10 00"},
        {Rx, "41 08 10 00 0A 00 00 00"},
        {Tx, "60"},
        {Rx, "00 4F 73 74 72 65 6C 20"},
        {Tx, "70"},
        {Rx, "19 49 2F 4F"}},
       {"SDO upload from node 5, 1008h sub 0, segmented: 10 bytes in 5.00 ms: \"Ostrel I/O\""}},
      {{{Tx, "21 00 20 01 08 00 00 00"},
        {Rx, "60 00 20 01"},
        {Tx, "00 01 02 03 04 05 06 07"},
        {Rx, "20"},
        {Tx, "1D 08"},
        {Rx, "30"}},
       {"SDO download to node 5, 2000h sub 1, segmented: 8 bytes in 5.00 ms: 01 02 03 04 05 06 07 08"}},
      // A block upload in two sub-blocks of two segments; bytes that look like commands are data.
      {{{Tx, "A4 00 20 00 02 1C"},
        {Rx, "C6 00 20 00 18 00 00 00"},
        {Tx, "A3"},
        {Rx, "01 80 80 80 80 80 80 80"},
        {Rx, "02 C1 C1 C1 C1 C1 C1 C1"},
        {Tx, "A2 02 02"},
        {Rx, "01 A1 A1 A1 A1 A1 A1 A1"},
        {Rx, "82 01 02 03"},
        {Tx, "A2 02 02"},
        {Rx, "D1 12 34"},
        {Tx, "A1"}},
       {"SDO upload from node 5, 2000h sub 0, block: 24 bytes in 10 ms: "
        "80 80 80 80 80 80 80 C1 C1 C1 C1 C1 C1 C1 A1 A1 ..."}},
      // A block download whose second segment got lost: it is sent again and counts once.
      {{{Tx, "C6 00 20 00 09 00 00 00"},
        {Rx, "A4 00 20 00 7F"},
        {Tx, "01 01 02 03 04 05 06 07"},
        {Tx, "82 08 09"},
        {Rx, "A2 01 7F"},
        {Tx, "81 08 09"},
        {Rx, "A2 01 7F"},
        {Tx, "D5 12 34"},
        {Rx, "A1"}},
       {"SDO download to node 5, 2000h sub 0, block: 9 bytes in 8.00 ms: 01 02 03 04 05 06 07 08 09"}},
      // The server answers a block upload with a normal one.
      {{{Tx, "A4 00 10 00 7F 1C"}, {Rx, "43 00 10 00 01 00 00 00"}},
       {"SDO upload from node 5, 1000h sub 0, expedited: 4 bytes in 1.00 ms: 01 00 00 00"}},
  };
  for (const Script& script : scripts) EXPECT_EQ(Words(script.steps), script.words);
}

TEST(SdoObserver, SaysHowATransferFailed) {
  const Script scripts[] = {
      {{{Tx, "40 34 12 00"}, {Rx, "80 34 12 00 00 00 02 06"}},
       {"SDO upload from node 5, 1234h sub 0, expedited: aborted after 1.00 ms, 06020000 (object does not "
        "exist)"}},
      {{{Tx, "40 34 12 00"}, {Rx, "80 34 12 00 EF BE AD DE"}},
       {"SDO upload from node 5, 1234h sub 0, expedited: aborted after 1.00 ms, DEADBEEF"}},
      {{{Tx, "C6 00 20 00 09 00 00 00"}, {Rx, "A4 00 20 00 7F"}, {Tx, "80 00 20 00 00 00 04 05"}},
       {"SDO download to node 5, 2000h sub 0, block: timed out after 2.00 ms, 05040000 (SDO protocol timed "
        "out)"}},
      {{{Tx, "40 34 12 00"}}, {"SDO upload from node 5, 1234h sub 0, expedited: no answer until the end"}},
      {{{Tx, "40 34 12 00"}, {Tx, "40 35 12 00"}, {Rx, "4F 35 12 00 01"}},
       {"SDO upload from node 5, 1234h sub 0, expedited: no answer until the end",
        "SDO upload from node 5, 1235h sub 0, expedited: 1 byte in 1.00 ms: 01"}},
      {{{Rx, "43 00 10 00 91 01 0F 00"}, {Tx, "60"}, {Tx, "80"}}, {}},
  };
  for (const Script& script : scripts) EXPECT_EQ(Words(script.steps), script.words);
}

TEST(SdoObserver, KeepsChannelsAndNodesApartAndOtherFramesOut) {
  SdoObserver observer;
  observer.OnFrame(1, Frame(Tx, "40 00 10 00"), {});
  EXPECT_THAT(observer.OnFrame(2, Frame(Rx, "43 00 10 00 01"), {}), IsEmpty());
  EXPECT_THAT(observer.OnFrame(1, Frame(Rx, "43 00 10 00 01", 6), {}), IsEmpty());
  EXPECT_THAT(observer.OnFrame(1, Frame(Rx, "43 00 10 00 01", 0), {}), IsEmpty());
  NSdk::CanFrame remote = Frame(Rx, "43 00 10 00 01");
  remote.flags |= NSdk::kFrameRemote;
  EXPECT_THAT(observer.OnFrame(1, remote, {}), IsEmpty());
  EXPECT_EQ(observer.OnFrame(1, Frame(Rx, "43 00 10 00 01"), {}).size(), 1u);
}

TEST(SdoObserver, KeepsTheBeginningOfLongDataAndCountsAllOfIt) {
  SdoObserver observer;
  observer.OnFrame(1, Frame(Tx, "40 00 20 00"), {});
  observer.OnFrame(1, Frame(Rx, "40 00 20 00"), {});
  for (int i = 0; i < 100; ++i) observer.OnFrame(1, Frame(Rx, "00 01 02 03 04 05 06 07"), {});
  const auto ended = observer.OnFrame(1, Frame(Rx, "0D 08"), {});
  ASSERT_EQ(ended.size(), 1u);
  EXPECT_EQ(ended[0].bytes, 701u);
  EXPECT_EQ(ended[0].data.size(), SdoObserver::kMaxKeptData);
}

}  // namespace
