#include <gmock/gmock.h>

#include "host/buses/candump.h"
#include "host/buses/log_line.h"

namespace {

using Content = NBuses::LogLineContent;
using Kind = Content::Kind;
using testing::HasSubstr;

TEST(LogLine, FramesInEveryFormThatIsWritten) {
  struct Case {
    const char* line;
    long long time_ns;
    const char* interfaceName;
    const char* frame;
  };
  const Case cases[] = {
      {"(1700000000.000123) can1 123#1122", 1700000000000123000, "can1", "123#1122"},
      {"(0000000005.000000) vcan0 080#", 5000000000, "vcan0", "080#"},
      {"(1.123456789)    can0   01abcdef#0102030405060708\r", 1123456789, "can0",
       "01ABCDEF#0102030405060708"},
      {"\t(1.5)\tcan0\t7FF#11.22.33 R", 1500000000, "can0", "7FF#112233"},
      {"(1.000000) can0 1FFFFFFF#00 T\r", 1000000000, "can0", "1FFFFFFF#00"},
      {"(1.000000) can0 705#R", 1000000000, "can0", "705#R0"},
      {"(1.000000) can0 00000705#R8", 1000000000, "can0", "00000705#R8"},
      {"(1.000000) can0 123#1122334455667788_F", 1000000000, "can0", "123#1122334455667788"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.line);
    const Content content = NBuses::ReadLogLine(c.line);
    ASSERT_EQ(content.kind, Kind::Frame) << content.fault;
    EXPECT_EQ(content.time.count(), c.time_ns);
    EXPECT_EQ(content.interfaceName, c.interfaceName);
    EXPECT_EQ(NBuses::FrameText(content.frame), c.frame);
  }
}

TEST(LogLine, WhatIsNoFrameIsToldApart) {
  const std::string binary("(1.0) can0 123#\0\xFF", 17);
  const std::tuple<std::string, Kind, const char*> cases[] = {
      {"", Kind::Nothing, ""},
      {" \t\r", Kind::Nothing, ""},
      {"# a comment", Kind::Nothing, ""},
      {"(1.0) can0 20000004#0004000000000000", Kind::ErrorFrame, ""},
      {"(1.0) can0 123##1112233", Kind::FdFrame, ""},
      {"DROPCOUNT: dropped 5 CAN frames", Kind::Malformed, "time in brackets"},
      {"  can0  123   [3]  11 22 33", Kind::Malformed, "time in brackets"},
      {"(1) can0 123#", Kind::Malformed, "(SECONDS.FRACTION)"},
      {"(1.) can0 123#", Kind::Malformed, "(SECONDS.FRACTION)"},
      {"(-1.0) can0 123#", Kind::Malformed, "(SECONDS.FRACTION)"},
      {"(1.0123456789) can0 123#", Kind::Malformed, "(SECONDS.FRACTION)"},
      {"(99999999999999999999.0) can0 123#", Kind::Malformed, "(SECONDS.FRACTION)"},
      {"(1.0", Kind::Malformed, "(SECONDS.FRACTION)"},
      {"(1.0)", Kind::Malformed, "interface"},
      {"(1.0) averyveryverylongname 123#", Kind::Malformed, "interface"},
      {"(1.0) can0", Kind::Malformed, "123#1122"},
      {"(1.0)  can0  123   [3]  11 22 33", Kind::Malformed, "123#1122"},
      {"(1.0) can0 12#", Kind::Malformed, "3 or 8"},
      {"(1.0) can0 12G#", Kind::Malformed, "3 or 8"},
      {"(1.0) can0 800#", Kind::Malformed, "too large"},
      {"(1.0) can0 40000000#", Kind::Malformed, "too large"},
      {"(1.0) can0 123#1", Kind::Malformed, "pairs"},
      {"(1.0) can0 123#11..22", Kind::Malformed, "pairs"},
      {"(1.0) can0 123#11.", Kind::Malformed, "pairs"},
      {binary, Kind::Malformed, "pairs"},
      {"(1.0) can0 123#112233445566778899", Kind::Malformed, "more than 8"},
      {"(1.0) can0 123#R9", Kind::Malformed, "behind R"},
      {"(1.0) can0 123#R11", Kind::Malformed, "behind R"},
      {"(1.0) can0 123#11 X", Kind::Malformed, "behind the frame"},
      {"(1.0) can0 123#11 R R", Kind::Malformed, "behind the frame"},
  };
  for (const auto& [line, kind, fault] : cases) {
    SCOPED_TRACE(line);
    const Content content = NBuses::ReadLogLine(line);
    EXPECT_EQ(content.kind, kind);
    EXPECT_THAT(content.fault, HasSubstr(fault));
  }
}

}  // namespace
