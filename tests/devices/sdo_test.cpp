// Expedited and segmented transfers, frame against frame.

#include "tests/devices/bench.h"

namespace {

using namespace NDevicesTest;
using namespace NDevices;

constexpr ObjectAddress kText = {0x2000, 0};
constexpr ObjectAddress kOctets = {0x2002, 0};

std::string Size(std::size_t size) {
  Bytes bytes(4);
  WriteLittleEndian(bytes, size);
  return Hex(bytes);
}

std::string Part(const Bytes& all, std::size_t place, std::size_t size) {
  const auto first = all.begin() + static_cast<std::ptrdiff_t>(place);
  return Hex(Bytes(first, first + static_cast<std::ptrdiff_t>(size)));
}

std::string Segment(unsigned command, const Bytes& all, std::size_t place, std::size_t size) {
  return Hex({static_cast<std::uint8_t>(command)}) + " " + Part(all, place, size);
}

// What a segmented transfer of the data looks like after its initiation. Byte 0 of a segment: 000 t nnn c.
template <class Exchange>
void ForEachSegment(const Bytes& data, Exchange exchange) {
  unsigned toggle = 0;
  for (std::size_t place = 0;; place += 7) {
    const std::size_t size = std::min<std::size_t>(7, data.size() - place);
    const bool last = place + size == data.size();
    exchange(Segment(toggle | static_cast<unsigned>(7 - size) << 1 | (last ? 1u : 0u), data, place, size),
             toggle);
    if (last) return;
    toggle ^= 0x10;
  }
}

constexpr std::size_t kSizes[] = {0, 5, 7, 8, 14, 15, 889, 890, 65536};

TEST(SdoServer, UploadsUpToFourBytesAtOnce) {
  struct Case {
    std::size_t size;
    const char* answer;
  };
  for (const Case& c : {Case{1, "4F 02 20 00 01"},
                        {2, "4B 02 20 00 01 02"},
                        {3, "47 02 20 00 01 02 03"},
                        {4, "43 02 20 00 01 02 03 04"}}) {
    Bench bench;
    bench.SetBytes(kOctets, Counting(c.size));
    bench.Play({{TX, "40 02 20 00"}, {RX, c.answer}});
  }
}

TEST(SdoServer, UploadsInSegments) {
  for (const std::size_t size : kSizes) {
    SCOPED_TRACE(size);
    Bench bench;
    const Bytes data = Counting(size);
    bench.SetBytes(kOctets, data);
    std::vector<Line> script = {{TX, "40 02 20 00"}, {RX, "41 02 20 00 " + Size(size)}};
    ForEachSegment(data, [&script](const std::string& segment, unsigned toggle) {
      script.push_back({TX, Hex({static_cast<std::uint8_t>(0x60 | toggle)})});
      script.push_back({RX, segment});
    });
    bench.Play(script);
    bench.Play({{TX, "60"}, {RX, "80 00 00 00 01 00 04 05"}});  // it is over
  }
}

TEST(SdoServer, DownloadsInSegments) {
  for (const std::size_t size : kSizes) {
    SCOPED_TRACE(size);
    Bench bench;
    bench.SetBytes(kOctets, {9, 9});
    const Bytes data = Counting(size);
    std::vector<Line> script = {{TX, "21 02 20 00 " + Size(size)}, {RX, "60 02 20 00"}};
    ForEachSegment(data, [&script](const std::string& segment, unsigned toggle) {
      script.push_back({TX, segment});
      script.push_back({RX, Hex({static_cast<std::uint8_t>(0x20 | toggle)})});
    });
    bench.Play(script);
    EXPECT_EQ(bench.Value(kOctets), data);
  }
}

TEST(SdoServer, DownloadsAtOnceAndWithoutSize) {
  struct Case {
    const char* request;
    ObjectAddress address;
    Bytes value;
  };
  const Case cases[] = {
      {"2F 07 20 00 12", {0x2007, 0}, {0x12}},
      {"22 07 20 00 12 34 56 78", {0x2007, 0}, {0x12}},  // as much as the object has
      {"2B 04 20 00 9C FF", {0x2004, 0}, {0x9C, 0xFF}},
      {"23 16 10 01 E8 03 06", {0x1016, 1}, {0xE8, 0x03, 0x06, 0}},
      {"27 02 20 00 01 02 03", kOctets, {1, 2, 3}},
      {"22 02 20 00 01 02 03 04", kOctets, {1, 2, 3, 4}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.request);
    Bench bench;
    bench.Request(c.request);
    EXPECT_EQ(bench.Sent(), std::vector{"585 60 " + std::string(c.request + 3, 8) + " 00 00 00 00"});
    EXPECT_EQ(bench.Value(c.address), c.value);
  }
  Bench bench;  // segmented, size not indicated
  bench.Play({{TX, "20 00 20 00"}, {RX, "60 00 20 00"}, {TX, "0B 41 42"}, {RX, "20"}});
  EXPECT_EQ(bench.Value(kText), (Bytes{'A', 'B'}));
}

TEST(SdoServer, RefusesWithTheCodeOfCiA301) {
  struct Case {
    const char* what;
    std::vector<Line> script;
  };
  const Case cases[] = {
      {"no object, upload", {{TX, "40 00 30 00"}, {RX, "80 00 30 00 00 00 02 06"}}},
      {"no object, download", {{TX, "2F 00 30 01 12"}, {RX, "80 00 30 01 00 00 02 06"}}},
      {"no object, block upload", {{TX, "A4 00 30 00 7F"}, {RX, "80 00 30 00 00 00 02 06"}}},
      {"no object, block download", {{TX, "C6 00 30 00 07"}, {RX, "80 00 30 00 00 00 02 06"}}},
      {"no sub-index", {{TX, "40 18 10 05"}, {RX, "80 18 10 05 11 00 09 06"}}},
      {"write-only", {{TX, "40 03 20 00"}, {RX, "80 03 20 00 01 00 01 06"}}},
      {"read-only", {{TX, "2F 00 60 01 12"}, {RX, "80 00 60 01 02 00 01 06"}}},
      {"constant", {{TX, "23 00 10 00 12"}, {RX, "80 00 10 00 02 00 01 06"}}},
      {"read-only, segmented", {{TX, "21 08 10 00 07"}, {RX, "80 08 10 00 02 00 01 06"}}},
      {"too long", {{TX, "2B 07 20 00 12"}, {RX, "80 07 20 00 12 00 07 06"}}},
      {"too short", {{TX, "2F 04 20 00 12"}, {RX, "80 04 20 00 13 00 07 06"}}},
      {"too long, segmented", {{TX, "21 00 20 00 41"}, {RX, "80 00 20 00 12 00 07 06"}}},
      {"more than memory has", {{TX, "21 02 20 00 FF FF FF FF"}, {RX, "80 02 20 00 12 00 07 06"}}},
      {"nothing for a number", {{TX, "21 07 20 00 00"}, {RX, "80 07 20 00 13 00 07 06"}}},
      {"eight bytes in four", {{TX, "22 05 20 00 01"}, {RX, "80 05 20 00 13 00 07 06"}}},
      {"value too high", {{TX, "2B 04 20 00 65 00"}, {RX, "80 04 20 00 31 00 09 06"}}},
      {"value too low", {{TX, "2B 04 20 00 9B FF"}, {RX, "80 04 20 00 32 00 09 06"}}},
      {"real too high", {{TX, "23 06 20 00 01 00 80 3F"}, {RX, "80 06 20 00 31 00 09 06"}}},
      {"value too high, in a segment",
       {{TX, "21 04 20 00 02"}, {RX, "60 04 20 00"}, {TX, "0B 65 00"}, {RX, "80 04 20 00 31 00 09 06"}}},
      {"history: nothing recorded", {{TX, "40 03 10 01"}, {RX, "80 03 10 01 24 00 00 08"}}},
      {"history: only 0", {{TX, "2F 03 10 00 01"}, {RX, "80 03 10 00 30 00 09 06"}}},
      {"unknown command", {{TX, "E0"}, {RX, "80 00 00 00 01 00 04 05"}}},
      {"segment out of the blue", {{TX, "00 01"}, {RX, "80 00 00 00 01 00 04 05"}}},
      {"end of a block out of the blue", {{TX, "A1"}, {RX, "80 00 00 00 01 00 04 05"}}},
      {"more than announced",
       {{TX, "21 00 20 00 05"}, {RX, "60 00 20 00"}, {TX, "00"}, {RX, "80 00 20 00 12 00 07 06"}}},
      {"less than announced",
       {{TX, "21 00 20 00 05"}, {RX, "60 00 20 00"}, {TX, "07"}, {RX, "80 00 20 00 13 00 07 06"}}},
      {"download toggle",
       {{TX, "21 00 20 00 08"}, {RX, "60 00 20 00"}, {TX, "10"}, {RX, "80 00 20 00 00 00 03 05"}}},
      {"download toggle repeated",
       {{TX, "21 00 20 00 0F"},
        {RX, "60 00 20 00"},
        {TX, "00"},
        {RX, "20"},
        {TX, "00"},
        {RX, "80 00 20 00 00 00 03 05"}}},
      {"upload toggle",
       {{TX, "40 00 20 00"}, {RX, "41 00 20 00 25"}, {TX, "70"}, {RX, "80 00 20 00 00 00 03 05"}}},
      {"download segment within an upload",
       {{TX, "40 00 20 00"}, {RX, "41 00 20 00 25"}, {TX, "00"}, {RX, "80 00 20 00 01 00 04 05"}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Bench bench;
    bench.Play(c.script);
    bench.Play({{TX, "40 00 10 00"}, {RX, "43 00 10 00 91 01 0F 00"}});  // and it goes on
    EXPECT_EQ(Hex(bench.Value({0x2004, 0})), "00 00");
    EXPECT_EQ(bench.Value(kText).size(), 0x25u);
  }
}

TEST(SdoServer, ALeftTransferTimesOut) {
  const char* requests[] = {"40 00 20 00", "21 00 20 00 08", "A4 00 20 00 7F", "C6 00 20 00 08"};
  for (const char* request : requests) {
    SCOPED_TRACE(request);
    Bench bench;
    bench.Request(request);
    bench.Sent();
    bench.RunFor(2999ms);
    EXPECT_TRUE(bench.sent.empty());
    bench.RunFor(1ms);
    bench.Play({{RX, "80 00 20 00 00 00 04 05"}});
    EXPECT_EQ(bench.device.NextDeadline(), kNever);
  }
}

TEST(SdoServer, AFrameInTimeKeepsATransferAlive) {
  Bench bench;
  bench.Play({{TX, "40 00 20 00"}, {RX, "41 00 20 00 25"}});
  for (const char* request : {"60", "70", "60"}) {
    bench.RunFor(2900ms);
    bench.Request(request);
    EXPECT_EQ(bench.Sent().size(), 1u);
  }
}

TEST(SdoServer, AnAbortOrANewRequestEndsATransfer) {
  Bench bench;
  bench.Play({{TX, "21 00 20 00 08"}, {RX, "60 00 20 00"}, {TX, "80 00 20 00 00 00 04 05"}});
  EXPECT_EQ(bench.device.NextDeadline(), kNever);
  bench.Play({{TX, "21 00 20 00 08"}, {RX, "60 00 20 00"}, {TX, "00 01 02 03 04 05 06 07"}, {RX, "20"}});
  bench.Play({{TX, "21 00 20 00 01"}, {RX, "60 00 20 00"}, {TX, "0D 41"}, {RX, "20"}});
  EXPECT_EQ(bench.Value(kText), Bytes{'A'});
}

TEST(SdoServer, IgnoresWhatIsNoRequest) {
  Bench bench;
  for (const char* frame : {"605 40 00 10 00", "605 40 00 10 00 00 00 00", "00000605 40 00 10 00 00 00 00 00",
                            "605 R", "606 40 00 10 00 00 00 00 00", "585 40 00 10 00 00 00 00 00"}) {
    bench.Feed(frame);
    EXPECT_TRUE(bench.sent.empty()) << frame;
  }
}

}  // namespace
