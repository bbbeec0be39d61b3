#include <gmock/gmock.h>

#include "host/buses/can_error.h"
#include "host/buses/candump.h"
#include "host/buses/socketcand_text.h"

namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

std::vector<std::string> Messages(NBuses::SocketcandStream& stream) {
  std::vector<std::string> messages;
  while (const auto words = stream.Next()) {
    messages.emplace_back();
    for (const auto word : *words) messages.back() += "[" + std::string(word) + "]";
  }
  return messages;
}

TEST(SocketcandText, MessagesAreFoundHoweverTheyWereCutUp) {
  constexpr char kBytes[] = "junk\n< hi ><open\tcan0>  < send 123 1 0a >\0\xFF< > <<ok> < frame";
  const std::string bytes(kBytes, sizeof kBytes - 1);
  for (std::size_t piece = 1; piece <= bytes.size(); ++piece) {
    NBuses::SocketcandStream stream;
    std::vector<std::string> messages;
    for (std::size_t begin = 0; begin < bytes.size(); begin += piece) {
      stream.Add(std::string_view(bytes).substr(begin, piece));
      for (std::string& message : Messages(stream)) messages.push_back(std::move(message));
    }
    EXPECT_THAT(messages, testing::ElementsAre("[hi]", "[open][can0]", "[send][123][1][0a]", "", "[<ok]"));
    EXPECT_FALSE(stream.IsTooLong());
    stream.Add(std::string(300, 'x'));
    EXPECT_FALSE(stream.Next());
    EXPECT_TRUE(stream.IsTooLong());
  }
  NBuses::SocketcandStream noise;
  noise.Add(std::string(1000000, 'x'));
  EXPECT_FALSE(noise.Next());
  EXPECT_FALSE(noise.IsTooLong());
}

std::vector<std::string_view> Words(const std::string& message, NBuses::SocketcandStream& stream) {
  stream.Add(message);
  return stream.Next().value_or(std::vector<std::string_view>());
}

TEST(SocketcandText, FramesInBothDirections) {
  struct Case {
    const char* message;
    const char* frame;    // empty: malformed
    const char* written;  // as we write it
  };
  const Case sends[] = {
      {"< send 123 2 11 22 >", "123#1122", "< send 123 2 11 22 >"},
      {"< send 5 1 a >", "005#0A", "< send 005 1 0A >"},
      {"< send 000 0 >", "000#", "< send 000 0 >"},
      {"< send 0000007f 8 1 2 3 4 5 6 7 ff >", "0000007F#01020304050607FF",
       "< send 0000007F 8 01 02 03 04 05 06 07 FF >"},
      {"< send 705 1 >", "705#R1", "< send 705 1 >"},
      {"< send 705 >", "", ""},
      {"< send 800 0 >", "", ""},
      {"< send 20000000 0 >", "", ""},
      {"< send 123456789 0 >", "", ""},
      {"< send 12G 0 >", "", ""},
      {"< send 0x1 0 >", "", ""},
      {"< send -1 0 >", "", ""},
      {"< send 123 9 1 2 3 4 5 6 7 8 9 >", "", ""},
      {"< send 123 2 11 >", "", ""},
      {"< send 123 1 11 22 >", "", ""},
      {"< send 123 1 100 >", "", ""},
      {"< send 123 1 zz >", "", ""},
  };
  for (const Case& c : sends) {
    SCOPED_TRACE(c.message);
    NBuses::SocketcandStream stream;
    const auto frame = NBuses::ReadSend(Words(c.message, stream));
    EXPECT_EQ(frame ? NBuses::FrameText(*frame) : "", c.frame);
    if (frame) {
      EXPECT_EQ(NBuses::SendCommand(*frame), c.written);
    }
  }
  const auto time = 1700000000s + 123us;
  const Case frames[] = {
      {"< frame 123 23.424242 1122 >", "123#1122", "< frame 123 1700000000.000123 1122 >"},
      {"< frame 00000123 23.424242  >", "00000123#", "< frame 00000123 1700000000.000123  >"},
      {"< frame 7ff 1.0 ff >", "7FF#FF", "< frame 7FF 1700000000.000123 FF >"},
      {"< frame 123 >", "", ""},
      {"< frame 123 1.0 112 >", "", ""},
      {"< frame 123 1.0 112233445566778899 >", "", ""},
      {"< frame 123 1.0 11 22 >", "", ""},
      {"< frame 800 1.0 >", "", ""},
      {"< frame 123 1.0 xx >", "", ""},
  };
  for (const Case& c : frames) {
    SCOPED_TRACE(c.message);
    NBuses::SocketcandStream stream;
    const auto frame = NBuses::ReadFrame(Words(c.message, stream));
    EXPECT_EQ(frame ? NBuses::FrameText(*frame) : "", c.frame);
    if (frame) {
      EXPECT_EQ(NBuses::FrameMessage(*frame, time), c.written);
    }
  }
}

TEST(SocketcandText, Addresses) {
  const std::tuple<const char*, const char*, int> cases[] = {
      {"pi", "pi", 29536},   {"10.0.0.1:80", "10.0.0.1", 80},
      {"[::1]:0", "::1", 0}, {"[::1]", "::1", 29536},
      {"", "", -1},          {":29536", "", -1},
      {"pi:", "", -1},       {"pi:x", "", -1},
      {"pi:65536", "", -1},  {"[::1", "", -1},
      {"[::1]80", "", -1},   {"::1", "", -1},
  };
  for (const auto& [text, host, port] : cases) {
    SCOPED_TRACE(text);
    const auto address = NBuses::ReadHostAndPort(text);
    EXPECT_EQ(address ? address->port : -1, port);
    EXPECT_EQ(address ? address->host : "", host);
  }
  EXPECT_EQ(NBuses::HostAndPortText("::1", 5), "[::1]:5");
}

TEST(CanError, InWordsAndNotOftenerThanASecond) {
  const std::tuple<std::uint32_t, std::array<std::uint8_t, 8>, const char*> cases[] = {
      {0x040, {}, "bus-off"},
      {0x020, {}, "nobody acknowledges the frames"},
      {0x100, {}, "restarted"},
      {0x004, {0, 0x20}, "error passive (sending)"},
      {0x004, {0, 0x14}, "error passive (receiving), many errors (receiving)"},
      {0x088, {0, 0, 0x04}, "bus error, stuff error"},
      {0x400, {}, "unknown"},
      {0, {}, "unknown"},
  };
  for (const auto& [classes, data, text] : cases) {
    EXPECT_THAT(NBuses::ErrorText({classes, data}), HasSubstr(text));
  }
  NBuses::CanErrorFilter filter;
  int told = 0;
  for (int millisecond = 0; millisecond < 2500; ++millisecond) {
    told += filter.Tell({0x20, {}}, std::chrono::milliseconds(millisecond)).has_value();
  }
  EXPECT_EQ(told, 3);
  EXPECT_THAT(filter.Tell({0x40, {}}, 2500ms).value_or(""),
              HasSubstr("bus-off: the controller has left the bus (499 "));
}

}  // namespace
