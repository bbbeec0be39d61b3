// Block transfers, frame against frame; whole ones of any size are in loopback_test.cpp.

#include "host/devices/crc.h"
#include "tests/devices/bench.h"

namespace {

using namespace NDevicesTest;
using namespace NDevices;

constexpr ObjectAddress kOctets = {0x2002, 0};

std::string Number(std::size_t number, std::size_t bytes) {
  Bytes text(bytes);
  WriteLittleEndian(text, number);
  return Hex(text);
}

// Segments of the data, each behind `mark`; their sequence numbers begin at `sequence`.
std::string Segments(const char* mark, const Bytes& data, std::size_t first, unsigned count,
                     unsigned sequence = 1) {
  std::string text;
  for (std::size_t place = 7 * first; place < 7 * (first + count); place += 7, ++sequence) {
    Bytes segment = {static_cast<std::uint8_t>(sequence | (place + 7 >= data.size() ? 0x80u : 0u))};
    for (std::size_t i = place; i < std::min(place + 7, data.size()); ++i) segment.push_back(data[i]);
    text += mark + Hex(segment);
  }
  return text;
}

std::string EndFrame(const Bytes& data) {
  const std::size_t inLast = data.empty() ? 0 : (data.size() - 1) % 7 + 1;
  return Number(0xC1 | (7 - inLast) << 2, 1) + " " + Number(BlockCrc(data), 2);
}

TEST(SdoServerBlock, TakesAPlainUploadForLittle) {
  Bench bench;
  bench.SetBytes(kOctets, Counting(5));
  bench.Play("> A4 02 20 00 7F 05 < 41 02 20 00 05 > 60 < 05 01 02 03 04 05");
  bench.Play("> A4 02 20 00 7F 04 < C6 02 20 00 05");
  bench.SetBytes(kOctets, Counting(4));
  bench.Play("> A4 02 20 00 7F 1C < 43 02 20 00 01 02 03 04");
}

TEST(SdoServerBlock, UploadGoesOnWhereTheClientSays) {
  Bench bench;
  const Bytes data = Counting(30);
  const auto answers = [&data](unsigned first, unsigned count) {
    return Segments(" < ", data, first, count);
  };
  bench.SetBytes(kOctets, data);
  bench.Play("> A4 02 20 00 03 < C6 02 20 00 1E");
  bench.Play("> A3" + answers(0, 3));
  // One of three has come; then none; then with another size all that is left.
  bench.Play("> A2 01 02" + answers(1, 2));
  bench.Play("> A2 00 02" + answers(1, 2));
  bench.Play("> A2 02 7F" + answers(3, 2));
  bench.Play("> A2 01 7F" + answers(4, 1));  // the last one again
  bench.Play("> A2 01 00 < " + EndFrame(data) + " > A1");
}

TEST(SdoServerBlock, DownloadGoesOnBehindAGap) {
  Bench bench({.nodeId = kNode, .sdo = {.blockSize = 4}, .misbehaviour = {}});
  const Bytes data = Counting(30);
  const auto requests = [&data](unsigned first, unsigned count, unsigned sequence) {
    return Segments("> ", data, first, count, sequence);
  };
  bench.Play("> C6 02 20 00 1E < A4 02 20 00 04");
  // The first is lost, then the third.
  bench.Play(requests(1, 3, 2) + "< A2 00 04");
  bench.Play(requests(0, 2, 1) + requests(3, 1, 4) + "< A2 02 04");
  bench.Play(requests(2, 3, 1) + "< A2 03 04");
  bench.Play("> " + EndFrame(data) + " < A1");
  EXPECT_EQ(bench.Value(kOctets), data);
}

TEST(SdoServerBlock, WithoutCrcNoneIsChecked) {
  Bench bench;
  bench.Play("> C2 02 20 00 01 < A4 02 20 00 7F > 81 2A < A2 01 7F > D9 12 34 < A1");
  EXPECT_EQ(bench.Value(kOctets), Bytes{0x2A});
  bench.Play("> A0 02 20 00 7F < C6 02 20 00 01 > A3 < 81 2A > A2 01 7F < D9 00 00 > A1");
}

TEST(SdoServerBlock, RefusesWithTheCodeOfCiA301) {
  struct Case {
    const char* what;
    std::string script;
  };
  const std::string started = "> C6 00 20 00 05 < A4 00 20 00 04 ";
  const Case cases[] = {
      {"block size 0", "> A4 01 20 00 00 < 80 01 20 00 02 00 04 05"},
      {"block size 128", "> A4 01 20 00 80 < 80 01 20 00 02 00 04 05"},
      {"next block size 0",
       "> A4 08 10 00 01 < C6 08 10 00 14 > A3 < 01 53 69 6D 75 6C 61 74 > A2 01 00 < 80 08 10 00 02 00 04 "
       "05"},
      {"acknowledge of what was never sent",
       "> A4 08 10 00 01 < C6 08 10 00 14 > A3 < 01 53 69 6D 75 6C 61 74 > A2 02 01 < 80 08 10 00 03 00 04 "
       "05"},
      {"not started", "> A4 08 10 00 01 < C6 08 10 00 14 > A2 01 01 < 80 08 10 00 01 00 04 05"},
      {"abort within a sub-block", started + "> 80 00 20 00 00 00 04 05"},
      {"sequence number 0", started + "> 00 01 < 80 00 20 00 03 00 04 05"},
      {"beyond the block size", started + "> 05 01 < 80 00 20 00 03 00 04 05"},
      {"more than announced", started + "> 01 > 82 < 80 00 20 00 12 00 07 06"},
      {"a little more than announced", started + "> 81 < A2 01 04 > C1 < 80 00 20 00 12 00 07 06"},
      {"less than announced", started + "> 81 < A2 01 04 > D5 < 80 00 20 00 13 00 07 06"},
      {"wrong CRC", started + "> 81 < A2 01 04 > C9 01 00 < 80 00 20 00 04 00 04 05"},
      {"value too high",
       "> C2 04 20 00 02 < A4 04 20 00 04 > 81 65 00 < A2 01 04 > D5 < 80 04 20 00 31 00 09 06"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Bench bench({.nodeId = kNode, .sdo = {.blockSize = 4}, .misbehaviour = {}});
    bench.Play(c.script);
    bench.Play("> 40 00 10 00 < 43 00 10 00 91 01 0F 00");
    EXPECT_EQ(Hex(bench.Value({0x2004, 0})), "00 00");
    EXPECT_EQ(bench.Value({0x2000, 0}).size(), 0x25u);
  }
}

}  // namespace
