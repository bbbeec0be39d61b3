// Block transfers, frame against frame.

#include "host/devices/crc.h"
#include "tests/devices/bench.h"

namespace {

using namespace NDevicesTest;
using namespace NDevices;

constexpr ObjectAddress kOctets = {0x2002, 0};

struct Plan {
  std::size_t size;
  std::uint8_t blockSize;
};
constexpr Plan kPlans[] = {{0, 127}, {1, 127}, {4, 127},   {5, 127},   {7, 127}, {8, 127},    {14, 2},
                           {15, 2},  {28, 2},  {889, 127}, {890, 127}, {890, 1}, {65536, 100}};

std::string Number(std::size_t number, std::size_t bytes) {
  Bytes text(bytes);
  WriteLittleEndian(text, number);
  return Hex(text);
}

std::string Segment(const Bytes& data, std::size_t place, unsigned sequence, bool last) {
  Bytes text = {static_cast<std::uint8_t>(sequence | (last ? 0x80u : 0u))};
  for (std::size_t i = place; i < std::min(place + 7, data.size()); ++i) text.push_back(data[i]);
  return Hex(text);
}

std::string EndFrame(const Bytes& data) {
  const std::size_t inLast = data.empty() ? 0 : (data.size() - 1) % 7 + 1;
  return Number(0xC1 | (7 - inLast) << 2, 1) + " " + Number(BlockCrc(data), 2);
}

// The sub-blocks of the data, up to 'blockSize' segments each, and an acknowledge in `other` direction behind
// each.
std::vector<Line> Blocks(const Bytes& data, std::uint8_t blockSize, Direction direction) {
  std::vector<Line> script;
  unsigned sequence = 0;
  for (std::size_t place = 0; place == 0 || place < data.size(); place += 7) {
    const bool last = place + 7 >= data.size();
    script.push_back({direction, Segment(data, place, ++sequence, last)});
    if (!last && sequence < blockSize) continue;
    script.push_back({direction == TX ? RX : TX, "A2 " + Number(sequence, 1) + " " + Number(blockSize, 1)});
    sequence = 0;
  }
  return script;
}

TEST(SdoServerBlock, Uploads) {
  for (const auto& [size, blockSize] : kPlans) {
    SCOPED_TRACE(size);
    Bench bench;
    const Bytes data = Counting(size);
    bench.SetBytes(kOctets, data);
    bench.Play({{TX, "A4 02 20 00 " + Number(blockSize, 1)}, {RX, "C6 02 20 00 " + Number(size, 4)}});
    std::vector<Line> script = Blocks(data, blockSize, RX);
    script.insert(script.begin(), {TX, "A3"});
    script.push_back({RX, EndFrame(data)});
    script.push_back({TX, "A1"});
    bench.Play(script);
    EXPECT_EQ(bench.device.NextDeadline(), kNever);
  }
}

TEST(SdoServerBlock, Downloads) {
  for (const auto& [size, blockSize] : kPlans) {
    SCOPED_TRACE(size);
    Bench bench({.nodeId = kNode, .sdo = {.blockSize = blockSize}, .misbehaviour = {}});
    bench.SetBytes(kOctets, {9, 9});
    const Bytes data = Counting(size);
    bench.Play({{TX, "C6 02 20 00 " + Number(size, 4)}, {RX, "A4 02 20 00 " + Number(blockSize, 1)}});
    std::vector<Line> script = Blocks(data, blockSize, TX);
    script.push_back({TX, EndFrame(data)});
    script.push_back({RX, "A1"});
    bench.Play(script);
    EXPECT_EQ(bench.Value(kOctets), data);
    EXPECT_EQ(bench.device.NextDeadline(), kNever);
  }
}

TEST(SdoServerBlock, TakesAPlainUploadForLittle) {
  Bench bench;
  bench.SetBytes(kOctets, Counting(5));
  bench.Play({{TX, "A4 02 20 00 7F 05"}, {RX, "41 02 20 00 05"}, {TX, "60"}, {RX, "05 01 02 03 04 05"}});
  bench.Play({{TX, "A4 02 20 00 7F 04"}, {RX, "C6 02 20 00 05"}});
  bench.SetBytes(kOctets, Counting(4));
  bench.Play({{TX, "A4 02 20 00 7F 1C"}, {RX, "43 02 20 00 01 02 03 04"}});
}

TEST(SdoServerBlock, UploadGoesOnWhereTheClientSays) {
  Bench bench;
  const Bytes data = Counting(30);
  bench.SetBytes(kOctets, data);
  bench.Play({{TX, "A4 02 20 00 03"}, {RX, "C6 02 20 00 1E"}});
  bench.Play({{TX, "A3"},
              {RX, Segment(data, 0, 1, false)},
              {RX, Segment(data, 7, 2, false)},
              {RX, Segment(data, 14, 3, false)}});
  // One of three has come; then none; then with another size all that is left.
  bench.Play({{TX, "A2 01 02"}, {RX, Segment(data, 7, 1, false)}, {RX, Segment(data, 14, 2, false)}});
  bench.Play({{TX, "A2 00 02"}, {RX, Segment(data, 7, 1, false)}, {RX, Segment(data, 14, 2, false)}});
  bench.Play({{TX, "A2 02 7F"}, {RX, Segment(data, 21, 1, false)}, {RX, Segment(data, 28, 2, true)}});
  bench.Play({{TX, "A2 01 7F"}, {RX, Segment(data, 28, 1, true)}});  // the last one again
  bench.Play({{TX, "A2 01 00"}, {RX, EndFrame(data)}, {TX, "A1"}});
}

TEST(SdoServerBlock, DownloadGoesOnBehindAGap) {
  Bench bench({.nodeId = kNode, .sdo = {.blockSize = 4}, .misbehaviour = {}});
  const Bytes data = Counting(30);
  bench.Play({{TX, "C6 02 20 00 1E"}, {RX, "A4 02 20 00 04"}});
  // The first is lost, then the third.
  bench.Play({{TX, Segment(data, 7, 2, false)},
              {TX, Segment(data, 14, 3, false)},
              {TX, Segment(data, 21, 4, false)},
              {RX, "A2 00 04"}});
  bench.Play({{TX, Segment(data, 0, 1, false)},
              {TX, Segment(data, 7, 2, false)},
              {TX, Segment(data, 21, 4, false)},
              {RX, "A2 02 04"}});
  bench.Play({{TX, Segment(data, 14, 1, false)},
              {TX, Segment(data, 21, 2, false)},
              {TX, Segment(data, 28, 3, true)},
              {RX, "A2 03 04"}});
  bench.Play({{TX, EndFrame(data)}, {RX, "A1"}});
  EXPECT_EQ(bench.Value(kOctets), data);
}

TEST(SdoServerBlock, WithoutCrcNoneIsChecked) {
  Bench bench;
  bench.Play({{TX, "C2 02 20 00 01"},
              {RX, "A4 02 20 00 7F"},
              {TX, "81 2A"},
              {RX, "A2 01 7F"},
              {TX, "D9 12 34"},
              {RX, "A1"}});
  EXPECT_EQ(bench.Value(kOctets), Bytes{0x2A});
  bench.Play({{TX, "A0 02 20 00 7F"},
              {RX, "C6 02 20 00 01"},
              {TX, "A3"},
              {RX, "81 2A"},
              {TX, "A2 01 7F"},
              {RX, "D9 00 00"},
              {TX, "A1"}});
}

TEST(SdoServerBlock, WithoutSizeAllThatFitsIsTaken) {
  Bench bench;
  bench.Play({{TX, "C4 02 20 00"},
              {RX, "A4 02 20 00 7F"},
              {TX, "81 01 02 03 04"},
              {RX, "A2 01 7F"},
              {TX, "CD 03 0D"},
              {RX, "A1"}});
  EXPECT_EQ(bench.Value(kOctets), Counting(4));
}

TEST(SdoServerBlock, RefusesWithTheCodeOfCiA301) {
  struct Case {
    const char* what;
    std::vector<Line> script;
  };
  const Line start = {TX, "C6 00 20 00 05"}, started = {RX, "A4 00 20 00 04"};
  const Case cases[] = {
      {"block size 0", {{TX, "A4 01 20 00 00"}, {RX, "80 01 20 00 02 00 04 05"}}},
      {"block size 128", {{TX, "A4 01 20 00 80"}, {RX, "80 01 20 00 02 00 04 05"}}},
      {"next block size 0",
       {{TX, "A4 08 10 00 01"},
        {RX, "C6 08 10 00 14"},
        {TX, "A3"},
        {RX, "01 53 69 6D 75 6C 61 74"},
        {TX, "A2 01 00"},
        {RX, "80 08 10 00 02 00 04 05"}}},
      {"acknowledge of what was never sent",
       {{TX, "A4 08 10 00 01"},
        {RX, "C6 08 10 00 14"},
        {TX, "A3"},
        {RX, "01 53 69 6D 75 6C 61 74"},
        {TX, "A2 02 01"},
        {RX, "80 08 10 00 03 00 04 05"}}},
      {"not started",
       {{TX, "A4 08 10 00 01"}, {RX, "C6 08 10 00 14"}, {TX, "A2 01 01"}, {RX, "80 08 10 00 01 00 04 05"}}},
      {"abort within a sub-block", {start, started, {TX, "80 00 20 00 00 00 04 05"}}},
      {"sequence number 0", {start, started, {TX, "00 01"}, {RX, "80 00 20 00 03 00 04 05"}}},
      {"beyond the block size", {start, started, {TX, "05 01"}, {RX, "80 00 20 00 03 00 04 05"}}},
      {"more than announced", {start, started, {TX, "01"}, {TX, "82"}, {RX, "80 00 20 00 12 00 07 06"}}},
      {"a little more than announced",
       {start, started, {TX, "81"}, {RX, "A2 01 04"}, {TX, "C1"}, {RX, "80 00 20 00 12 00 07 06"}}},
      {"less than announced",
       {start, started, {TX, "81"}, {RX, "A2 01 04"}, {TX, "D5"}, {RX, "80 00 20 00 13 00 07 06"}}},
      {"wrong CRC",
       {start, started, {TX, "81"}, {RX, "A2 01 04"}, {TX, "C9 01 00"}, {RX, "80 00 20 00 04 00 04 05"}}},
      {"value too high",
       {{TX, "C2 04 20 00 02"},
        {RX, "A4 04 20 00 04"},
        {TX, "81 65 00"},
        {RX, "A2 01 04"},
        {TX, "D5"},
        {RX, "80 04 20 00 31 00 09 06"}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Bench bench({.nodeId = kNode, .sdo = {.blockSize = 4}, .misbehaviour = {}});
    bench.Play(c.script);
    bench.Play({{TX, "40 00 10 00"}, {RX, "43 00 10 00 91 01 0F 00"}});
    EXPECT_EQ(Hex(bench.Value({0x2004, 0})), "00 00");
    EXPECT_EQ(bench.Value({0x2000, 0}).size(), 0x25u);
  }
}

}  // namespace
