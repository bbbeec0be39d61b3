#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

#include "host/buses/bus_factory.h"
#include "host/buses/bus_name.h"
#include "host/buses/candump.h"
#include "host/buses/log_writer.h"
#include "tests/host/virtual_loop.h"
#include "tests/test_folder.h"

namespace {

using testing::HasSubstr;

std::string Refusal(const std::function<void()>& action) {
  try {
    action();
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "nothing was refused";
}

TEST(BusName, IsTakenApart) {
  struct Case {
    const char* word;
    const char* kind;
    const char* address;
    std::vector<NBuses::BusName::Option> options;
  };
  const Case cases[] = {
      {"virtual", "virtual", "", {}},
      {"virtual:plant", "virtual", "plant", {}},
      {"virtual:plant,bitrate=125000", "virtual", "plant", {{"bitrate", "125000"}}},
      {"virtual,bitrate=125000", "virtual", "", {{"bitrate", "125000"}}},
      {"socketcand:10.0.0.1:29536/can0", "socketcand", "10.0.0.1:29536/can0", {}},
      {"replay:a b.log,speed=max,iface=can0", "replay", "a b.log", {{"speed", "max"}, {"iface", "can0"}}},
      {"kind,option=a:b=c", "kind", "", {{"option", "a:b=c"}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.word);
    const NBuses::BusName name = NBuses::ParseBusName(c.word);
    EXPECT_EQ(name.kind, c.kind);
    EXPECT_EQ(name.address, c.address);
    EXPECT_EQ(name.options, c.options);
  }
}

TEST(BusName, RefusalsNameTheWordAndTheFault) {
  NTest::VirtualLoop loop;
  NBuses::BusFactory factory(loop);
  const std::pair<const char*, const char*> cases[] = {
      {"", "KIND"},
      {":plant", "KIND"},
      {"virtual:", "after the colon"},
      {"virtual:,a=b", "after the colon"},
      {"virtual,", "last comma"},
      {"virtual,,a=b", "NAME=VALUE"},
      {"virtual,bitrate", "\"bitrate\""},
      {"virtual,=5", "NAME=VALUE"},
      {"virtual,a=", "NAME=VALUE"},
      {"virtual,a=1,a=2", "twice"},
      {"virtual,frob=1", "unknown option \"frob\" (virtual has bitrate)"},
      {"virtual,bitrate=999", "1000 to 1000000"},
      {"virtual,bitrate=1000001", "1000 to 1000000"},
      {"virtual,bitrate=1e3", "bitrate=1e3"},
      {"Virtual", "unknown kind \"Virtual\" (known: virtual, "},
      {"serial:COM1", "unknown kind \"serial\" (known: virtual, "},
  };
  for (const auto& [word, fault] : cases) {
    const std::string text = Refusal([&, word = word] { factory.Make(word); });
    EXPECT_THAT(text, HasSubstr(fault));
    EXPECT_THAT(text, HasSubstr("bus \"" + std::string(word) + "\""));
    EXPECT_EQ(text.find('\n'), std::string::npos);
  }
}

constexpr NSdk::CanFrame kData = {0x5A, {0x0F, 0xA0, 0x00}, 3};
constexpr NSdk::CanFrame kEmpty = {0x80, {}, 0};
constexpr NSdk::CanFrame kExtended = {0x1ABCDEF, {1, 2, 3, 4, 5, 6, 7, 8}, 8 | NSdk::kFrameExtended};
constexpr NSdk::CanFrame kRemote = {0x705, {}, 1 | NSdk::kFrameRemote};
constexpr NSdk::CanFrame kRemoteExtended = {5, {}, 0 | NSdk::kFrameRemote | NSdk::kFrameExtended};

TEST(Candump, FramesInBothForms) {
  struct Case {
    NSdk::CanFrame frame;
    const char* log;
    const char* console;
  };
  const Case cases[] = {
      {kData, "05A#0FA000", "  can1  05A   [3]  0F A0 00"},
      {kEmpty, "080#", "  can1  080   [0] "},
      {kExtended, "01ABCDEF#0102030405060708", "  can1  01ABCDEF   [8]  01 02 03 04 05 06 07 08"},
      {kRemote, "705#R1", "  can1  705   [1]  remote request"},
      {kRemoteExtended, "00000005#R0", "  can1  00000005   [0]  remote request"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(NBuses::FrameText(c.frame), c.log);
    EXPECT_EQ(NBuses::ConsoleLine(1, c.frame), c.console);
  }
  EXPECT_EQ(NBuses::LogLine(std::chrono::nanoseconds(1700000000000123999), 12, kData),
            "(1700000000.000123) can12 05A#0FA000");
  EXPECT_EQ(NBuses::LogLine(std::chrono::nanoseconds(1500), 1, kEmpty), "(0000000000.000001) can1 080#");
  EXPECT_EQ(NBuses::ConsoleTime(std::chrono::milliseconds(12345)), " (012.345000)");
}

class Logs : public testing::Test {
 protected:
  const NTest::TestFolder folder;
};

TEST_F(Logs, EachLineIsInTheFileAtOnce) {
  const auto path = folder / u8"Pr\u00fcfung.log";
  std::ofstream(path) << "what was there before is replaced, however long it is";
  NBuses::LogWriter log(path);
  log.Write(std::chrono::seconds(5), 1, kData);
  log.Write(std::chrono::seconds(6), 2, kRemote);
  EXPECT_EQ(NTest::ReadFile(path), "(0000000005.000000) can1 05A#0FA000\n(0000000006.000000) can2 705#R1\n");
}

TEST_F(Logs, AFileThatCannotBeCreatedIsNamed) {
  const auto missing = folder / "none" / "x.log";
  EXPECT_THAT(Refusal([&] { NBuses::LogWriter log(missing); }), HasSubstr("x.log: cannot be created"));
  EXPECT_THAT(Refusal([&] { NBuses::LogWriter log(folder); }), HasSubstr("cannot be created"));
}

TEST_F(Logs, OnlyAnEmptyLogIsDiscarded) {
  NBuses::LogWriter empty(folder / "empty.log");
  empty.Discard();
  EXPECT_FALSE(std::filesystem::exists(folder / "empty.log"));
  NBuses::LogWriter used(folder / "used.log");
  used.Write(std::chrono::seconds(5), 1, kData);
  used.Discard();
  EXPECT_TRUE(std::filesystem::exists(folder / "used.log"));
}

}  // namespace
