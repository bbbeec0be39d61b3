#include <gmock/gmock.h>

#include <stdexcept>

#include "host/devices/crc.h"
#include "host/devices/device_word.h"
#include "tests/devices/bench.h"

namespace {

using namespace NDevicesTest;
using namespace NDevices;
using testing::HasSubstr;

TEST(DataTypes, AreOrderedByTheirMeaning) {
  struct Case {
    DataType type;
    Bytes lower, higher;
  };
  const Case cases[] = {
      {DataType::Unsigned8, {0x7F}, {0x80}},
      {DataType::Integer8, {0x80}, {0x7F}},
      {DataType::Unsigned16, {0xFF, 0x00}, {0x00, 0x01}},
      {DataType::Integer24, {0xFF, 0xFF, 0xFF}, {0, 0, 0}},
      {DataType::Integer64, {0, 0, 0, 0, 0, 0, 0, 0x80}, {0, 0, 0, 0, 0, 0, 0, 0}},
      {DataType::Unsigned64, {0, 0, 0, 0, 0, 0, 0, 0x7F}, {0, 0, 0, 0, 0, 0, 0, 0x80}},
      {DataType::Real32, {0, 0, 0x80, 0xBF}, {0, 0, 0x80, 0x3F}},
      {DataType::Real64, {0, 0, 0, 0, 0, 0, 0xF0, 0xBF}, {0, 0, 0, 0, 0, 0, 0, 0}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(static_cast<int>(c.type));
    EXPECT_TRUE(IsLess(c.type, c.lower, c.higher));
    EXPECT_FALSE(IsLess(c.type, c.higher, c.lower));
    EXPECT_FALSE(IsLess(c.type, c.lower, c.lower));
  }
  const Bytes notANumber = {0, 0, 0xC0, 0x7F};
  EXPECT_FALSE(IsLess(DataType::Real32, notANumber, {Bytes(4)}));
  EXPECT_FALSE(IsLess(DataType::VisibleString, Bytes{'a'}, Bytes{'b'}));
}

TEST(Crc, HasTheValuesOfTheField) {
  EXPECT_EQ(BlockCrc(Bytes{0x05, 0x04, 0x8B, 0xA2, 0xE8, 0x1C, 0x7E}), 0x66E0);
  EXPECT_EQ(BlockCrc(Counting(7)), 0x26B3);
  EXPECT_EQ(BlockCrc(Counting(4)), 0x0D03);
  EXPECT_EQ(BlockCrc({}), 0);
  const Bytes all = Counting(100);
  EXPECT_EQ(BlockCrc(BytesView(all).subspan(31), BlockCrc(BytesView(all).first(31))), BlockCrc(all));
}

TEST(Objects, ThatDoNotFitAreRefused) {
  const auto entry = [](DataType type, Bytes value, Bytes low = {}, std::uint32_t maxSize = 0) {
    Entry e;
    e.address = {0x3000, 0};
    e.type = type;
    e.value = std::move(value);
    e.low = std::move(low);
    e.maxSize = maxSize;
    return e;
  };
  const Entry wrong[] = {
      entry(DataType::Unsigned16, {1}),
      entry(DataType::Unsigned8, {1, 2}),
      entry(DataType::Unsigned8, {1}, {1, 2}),
      entry(DataType::VisibleString, {1, 2, 3}, {}, 2),
  };
  ObjectDictionary objects;
  for (const Entry& e : wrong) EXPECT_THROW(objects.Add(e), std::invalid_argument);
  objects.Add(entry(DataType::Unsigned8, {1}));
  EXPECT_THROW(objects.Add(entry(DataType::Unsigned8, {1})), std::invalid_argument);
}

// Whatever a description or a profile holds, a device built of it must be able to serve it.
TEST(Objects, OfTheBuiltInDeviceHangTogether) {
  const ObjectDictionary objects = IoDeviceObjects(127);
  for (const Entry& entry : objects) {
    EXPECT_EQ(CheckSize(entry, entry.value.size()), AbortCode::None) << entry.address.index;
    EXPECT_EQ(CheckLimits(entry, entry.value), AbortCode::None) << entry.address.index;
    const Entry* count = objects.Find({entry.address.index, 0});
    ASSERT_NE(count, nullptr) << entry.address.index;
  }
  for (const std::uint16_t pdo : std::initializer_list<std::uint16_t>{0x1600, 0x1601, 0x1A00, 0x1A01}) {
    const PdoDirection direction = pdo < 0x1A00 ? PdoDirection::Receive : PdoDirection::Transmit;
    EXPECT_EQ(CheckMapping(objects, pdo, objects.Number({pdo, 0}), direction), AbortCode::None) << pdo;
  }
}

TEST(DeviceWord, IsTakenApart) {
  struct Case {
    const char* word;
    int nodeId;
    const char* description;
  };
  for (const Case& c : {Case{"1", 1, ""},
                        {"127", 127, ""},
                        {"005", 5, ""},
                        {"5:C:\\a b.eds", 5, "C:\\a b.eds"},
                        {"5:\"a,b.eds\",silent", 5, "a,b.eds"}}) {
    const DeviceWord device = ParseDeviceWord(c.word);
    EXPECT_EQ(device.nodeId, c.nodeId);
    EXPECT_EQ(device.description, c.description);
    EXPECT_EQ(ParseDeviceWord(DeviceWordText(device)), device) << c.word;
  }
}

TEST(DeviceWord, SaysHowTheDeviceMisbehaves) {
  const Misbehaviour some =
      ParseDeviceWord("5,late=300,silent,abort=0x06020000,abort-at=7,drop-segment,segment=0x10").faults;
  EXPECT_EQ(some.answerDelay, std::chrono::milliseconds(300));
  EXPECT_TRUE(some.silent && some.dropSegment);
  EXPECT_FALSE(some.wrongToggle || some.wrongSequence || some.badCrc || some.varyBlockSize);
  EXPECT_EQ(some.abort, AbortCode::NoObject);
  EXPECT_EQ(some.abortAtSegment, 7u);
  EXPECT_EQ(some.segment, 16u);
  const DeviceWord others = ParseDeviceWord("5:a.eds,wrong-toggle,wrong-sequence,bad-crc,vary-block-size");
  EXPECT_EQ(others.description, "a.eds");
  EXPECT_TRUE(others.faults.wrongToggle && others.faults.wrongSequence && others.faults.badCrc &&
              others.faults.varyBlockSize);
  EXPECT_EQ(others.faults.segment, 1u);
}

TEST(DeviceWord, RefusalsNameTheWordAndTheFault) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "begins with its node-ID"},
      {":a.eds", "begins with its node-ID"},
      {"0", "not in the range 1 to 127"},
      {"128", "not in the range 1 to 127"},
      {"99999999999", "not in the range"},
      {"-1", "no decimal number"},
      {"0x5", "no decimal number"},
      {" 5", "no decimal number"},
      {"5 ", "no decimal number"},
      {"five", "no decimal number"},
      {"5:", "missing after the colon"},
      {"5:,silent", "missing after the colon"},
      {"5:\"\"", "missing after the colon"},
      {"5:\"a.eds,silent", "is not closed"},
      {"5,", "after the last comma"},
      {"5,silent,", "after the last comma"},
      {"5,,silent", "NAME=VALUE"},
      {"5,=3", "NAME=VALUE"},
      {"5,Silent", "known: late, silent"},
      {"5,silent=1", "has no value"},
      {"5,late", "late=MS"},
      {"5,late=", "late=: a number from 0 to 3600000"},
      {"5,late=3600001", "0 to 3600000"},
      {"5,late=1,late=1", "given twice"},
      {"5,abort=0", "a number from 1 is"},
      {"5,abort=0x100000000", "a number from 1 is"},
      {"5,abort-at=2", "wants abort=CODE"},
      {"5,segment=2", "beside it"},
  };
  for (const auto& [word, fault] : cases) {
    try {
      ParseDeviceWord(word);
      ADD_FAILURE() << word << " was accepted";
    } catch (const std::runtime_error& error) {
      EXPECT_THAT(error.what(), HasSubstr(fault));
      EXPECT_THAT(error.what(), HasSubstr("device \"" + std::string(word) + "\""));
    }
  }
}

}  // namespace
