// What the text of a configuration means, and what is said when it means nothing.

#include <gmock/gmock.h>

#include "host/configuration/bit_rate.h"
#include "host/configuration/document_text.h"

namespace {

using namespace NConfiguration;
using testing::HasSubstr;

Document FullDocument() {
  Document document;
  document.variant = NSdk::kHostTesmond;
  document.language = 7;
  document.numberBase = 16;
  document.channels = {{2, "virtual:line,bitrate=125000", BitTiming{0x03, 0x1C}, {"net.dbc", "sub\\b,c.dbc"}},
                       {1, "replay:\"a,b.log\",speed=max"}};
  NDevices::DeviceWord device;
  device.nodeId = 127;
  device.description = "drive, left.dcf";
  device.faults = NDevices::ParseDeviceWord(
                      "1,late=300,silent,abort=0x06020000,abort-at=7,bad-crc,vary-block-size,wrong-toggle,"
                      "wrong-sequence,drop-segment,segment=16")
                      .faults;
  document.devices = {{2, device}, {1, device}, {1, NDevices::ParseDeviceWord("5")}};
  document.blocks = {{"HarlowPlugIn.CANopenIG",
                      {{"Name", "Zähler \"1\"\n\t\\"}, {"SvcDelay", "10"}, {"Another/~ key", ""}},
                      Window{-5, 20, 640, 480, false, true}},
                     {"HarlowPlugIn.CANopenScanner"}};
  document.window = Window{0, 0, 1024, 768};
  document.windows = {{kSetupWindow, Window{1, 2, 3, 4}},
                      {kTraceWindow, Window{5, 6, 7, 8, true, true, true}}};
  document.largeIcons = true;
  return document;
}

TEST(Document, ComesBackFromItsTextAsItWent) {
  for (const Document& document : {FullDocument(), Document()}) {
    const ParsedDocument parsed = ParseDocument(DocumentText(document));
    for (const Fault& fault : parsed.faults) ADD_FAILURE() << fault.place << ": " << fault.text;
    EXPECT_EQ(parsed.document, document);
    EXPECT_EQ(DocumentText(parsed.document), DocumentText(document));
  }
}

TEST(Document, TakesWhatPeopleWrite) {
  const ParsedDocument parsed = ParseDocument(
      "\xEF\xBB\xBF{\"blocks\":[],\r\n\"channels\":[{\"bus\":\"virtual\",\"number\":3,\"timing\":{"
      "\"register1\":28,"
      "\"register0\":\"0X0f\"}}], "
      "\"devices\":[{\"node\":1,\"channel\":3,\"faults\":{\"silent\":false,\"abort\":1}}],"
      "\"numberBase\":10,\"language\":1,\"variant\":\"halvard\",\"format\":1}");
  for (const Fault& fault : parsed.faults) ADD_FAILURE() << fault.place << ": " << fault.text;
  EXPECT_EQ(parsed.document.channels.at(0).timing, (BitTiming{15, 28}));
  EXPECT_EQ(parsed.document.devices.at(0).device.faults.abort, NDevices::AbortCode{1});
  EXPECT_FALSE(parsed.document.devices.at(0).device.faults.silent);
}

TEST(Document, TheBitRateOfAChannelComesFromItsBusOrItsRegisters) {
  const struct {
    Channel channel;
    std::optional<std::uint32_t> rate;
    const char* bus;
  } rows[] = {
      {{1, "virtual,bitrate=125000", BitTiming{0x00, 0x14}}, 125000, "virtual,bitrate=125000"},
      {{1, "virtual:\"a,b\"", BitTiming{0x00, 0x14}}, 1000000, "virtual:\"a,b\",bitrate=1000000"},
      {{1, "virtual", BitTiming{0x43, 0x2F}}, 100000, "virtual,bitrate=100000"},
      {{1, "virtual", BitTiming{0x00, 0x00}}, std::nullopt, "virtual"},
      {{1, "virtual"}, std::nullopt, "virtual"},
      {{1, "socketcan:can0", BitTiming{0x00, 0x14}}, 1000000, "socketcan:can0"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(BitRateOf(row.channel), row.rate) << row.channel.bus;
    EXPECT_EQ(BusForUse(row.channel), row.bus);
  }
}

// A configuration with one value replaced by another text.
std::string With(const std::string& place, const std::string& text) {
  std::string whole = R"({
  "format": 1,
  "variant": "halvard",
  "language": 1,
  "numberBase": 10,
  "channels": [
    {"number": 1, "bus": "virtual", "timing": {"register0": 0, "register1": 20}, "databases": ["a.dbc"]},
    {"number": 2, "bus": "virtual:b"}
  ],
  "devices": [{"channel": 1, "node": 5, "faults": {"late": 20}}, {"channel": 1, "node": 6}],
  "blocks": [{"progId": "x", "settings": {"Name": "n"}, "window": {"x": 0, "y": 0, "width": 9, "height": 9}}]
})";
  const std::size_t at = whole.find(place);
  if (at == std::string::npos) throw std::logic_error(place);
  return whole.replace(at, place.size(), text);
}

struct Case {
  const char* place;
  const char* text;
  std::uint32_t line;
  const char* faultPlace;
  const char* fault;
};

constexpr Case kCases[] = {
    {"\"format\": 1", "\"format\": 2", 2, "/format",
     "comes from a newer version; this one reads formats up to 1"},
    {"\"format\": 1,", "", 1, "", "the key \"format\" is missing"},
    {"halvard", "other", 3, "/variant", "halvard or tesmond is expected, not \"other\""},
    {"\"language\": 1", "\"language\": \"1\"", 4, "/language", "a number is expected, not a text"},
    {"\"language\": 1", "\"language\": 1e99", 4, "/language", "a whole number from 1 to 99"},
    {"10", "8", 5, "/numberBase", "10 or 16 is expected"},
    {"10", "10.0", 5, "/numberBase", "10 or 16 is expected"},
    {"\"number\": 1", "\"number\": 0", 7, "/channels/0/number", "0 is not in the range 1 to 255"},
    {"\"number\": 1", "\"number\": 1,\"nunber\": 1", 7, "/channels/0",
     "unknown key \"nunber\" (known: number, bus, timing, databases)"},
    {"\"number\": 2", "\"number\": 1", 8, "/channels/1/number", "channel 1 stands in the list twice"},
    {"\"virtual:b\"", "\"virtual:\"", 8, "/channels/1/bus", "nothing stands after the colon"},
    {"\"virtual:b\"", "\"\"", 8, "/channels/1/bus", "the text is empty"},
    {"20}", "256}", 7, "/channels/0/timing/register1", "256 is not in the range 0 to 255"},
    {"20}", "\"1C\"}", 7, "/channels/0/timing/register1", "such as \"0x1C\", is expected, not \"1C\""},
    {", \"register1\": 20", "", 7, "/channels/0/timing", "\"register1\" is missing"},
    {"\"a.dbc\"", "1", 7, "/channels/0/databases/0", "the path of a file"},
    {"\"channel\": 1", "\"channel\": 3", 10, "/devices/0/channel", "no channel 3"},
    {"\"node\": 5", "\"node\": 128", 10, "/devices/0/node", "128 is not in the range 1 to 127"},
    {"\"node\": 6", "\"node\": 5", 10, "/devices/1/node", "another device on channel 1 is node 5"},
    {"\"late\": 20", "\"late\": -1", 10, "/devices/0/faults/late", "-1 is not in the range"},
    {"\"late\": 20", "\"early\": 20", 10, "/devices/0/faults", "unknown key \"early\""},
    {"\"late\": 20", "\"abort-at\": 2", 10, "/devices/0/faults", "abort-at wants abort"},
    {"\"n\"", "5", 11, "/blocks/0/settings/Name", "quotation marks around numbers too"},
    {"\"Name\": \"n\"", "\"N\": \"\", \"N\": \"\"", 11, "", "the key \"N\" stands twice"},
    {"\"height\": 9", "\"height\": 99999", 11, "/blocks/0/window/height", "not in the range 0 to 32767"},
    {"\"n\"", "\"a\\u0000b\"", 11, "", "\\u0000"},
};

TEST(Document, FaultsAreToldWithTheirPlace) {
  for (const Case& row : kCases) {
    SCOPED_TRACE(row.text);
    const ParsedDocument parsed = ParseDocument(With(row.place, row.text));
    ASSERT_EQ(parsed.faults.size(), 1u);
    EXPECT_EQ(parsed.faults[0].line, row.line);
    EXPECT_EQ(parsed.faults[0].place, row.faultPlace);
    EXPECT_THAT(parsed.faults[0].text, HasSubstr(row.fault));
  }
  std::string several = With("halvard", "?");
  several.replace(several.find("\"node\": 6"), 9, "\"node\": 0");
  EXPECT_EQ(ParseDocument(several).faults.size(), 2u);
}

TEST(Document, BrokenTextIsToldWithLineAndColumn) {
  const auto fault = [](const std::string& text) {
    const ParsedDocument parsed = ParseDocument(text);
    EXPECT_EQ(parsed.document, Document());
    const Fault& first = parsed.faults.at(0);
    return std::to_string(first.line) + ':' + std::to_string(first.column) + ": " + first.text;
  };
  EXPECT_EQ(fault(""), "1:1: unexpected end of input; expected '[', '{', or a literal");
  EXPECT_EQ(fault("[]"), "1:0: an object is expected, not a list");
  EXPECT_THAT(fault("{\n  \"ü\": \"\n\"}"),
              testing::StartsWith("2:9: invalid string: control character U+000A"));
  EXPECT_EQ(fault("{\n  \"a\" 1}"), "2:7: unexpected number literal; expected ':'");
  EXPECT_THAT(fault("{\"a\": \"" + std::string(5000, 'x')), HasSubstr("missing closing quote"));
  EXPECT_LT(fault("{\"a\": \"" + std::string(5000, 'x')).size(), 100u);
  EXPECT_THAT(fault("{\"a\": \"\xFF\"}"), HasSubstr("ill-formed UTF-8"));
  EXPECT_THAT(fault("{} {}"), testing::StartsWith("1:4: unexpected '{'"));
}

TEST(Document, SizeAndDepthOfWhatIsReadAreLimited) {
  const auto fault = [](const std::string& text) { return ParseDocument(text).faults.at(0).text; };
  EXPECT_THAT(fault(std::string(4000000, '[')), HasSubstr("nested more than 8 deep"));
  EXPECT_THAT(fault("{\"a\": \"" + std::string(40000, 'x') + "\"}"), HasSubstr("more than 32 KiB"));
  std::string list = "{\"a\": [1";
  for (int entry = 0; entry < 2000; ++entry) list += ",1";
  EXPECT_THAT(fault(list + "]}"), HasSubstr("more than 1000 entries"));
}

}  // namespace
