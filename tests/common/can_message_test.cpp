#include "common/can_message.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <utility>

#include "com/assertion.h"
#include "com/implements.h"
#include "com/task_text.h"
#include "common/scan_integer.h"
#include "sdk/persistence.h"

namespace {

using NCom::ComPtr;
using NCommon::CanMessageRecord;

class Settings final : public NCom::Implements<NSdk::IPersistReader, NSdk::IPersistWriter> {
 public:
  HRESULT STDMETHODCALLTYPE ReadText(const wchar_t* key, wchar_t** value) override {
    const auto found = values.find(key);
    return found == values.end() ? E_FAIL : NCom::HandOut(found->second, value);
  }
  HRESULT STDMETHODCALLTYPE WriteText(const wchar_t* key, const wchar_t* value) override {
    if (refused == key) return E_FAIL;
    values[key] = value;
    return S_OK;
  }

  std::map<std::wstring, std::wstring> values;
  std::wstring refused;
};

template <class Value, class Query>
Value Ask(NSdk::ICANMessage& message, Query query) {
  Value value{};
  EXPECT_EQ((message.*query)(&value), S_OK);
  return value;
}

// What the message tells of itself.
CanMessageRecord RecordOf(NSdk::ICANMessage& message) {
  using NSdk::ICANMessage;
  CanMessageRecord record;
  record.identifier = Ask<std::uint32_t>(message, &ICANMessage::GetIdentifier);
  record.extended = Ask<std::uint32_t>(message, &ICANMessage::GetExtended);
  record.channel = Ask<std::uint32_t>(message, &ICANMessage::GetChannel);
  record.direction = Ask<std::uint32_t>(message, &ICANMessage::GetDirection);
  record.remote = Ask<std::uint32_t>(message, &ICANMessage::GetRemote);
  record.time_ns = Ask<std::int64_t>(message, &ICANMessage::GetTimeStamp);
  record.data.resize(Ask<std::uint32_t>(message, &ICANMessage::GetDataLength));
  EXPECT_EQ(message.CopyData(0, record.data.data(), static_cast<std::uint32_t>(record.data.size())), S_OK);
  return record;
}

ComPtr<NSdk::IPersistentObject> Persistent(const ComPtr<NSdk::ICANMessage>& message) {
  return message.As<NSdk::IPersistentObject>();
}

const CanMessageRecord kRecord = {0x80000123, 1, 2, 3, 4, -5, {1, 2, 3}};

TEST(CanMessage, TellsItsFieldsAndHidesTheMark) {
  const auto message = NCommon::MakeCanMessage(kRecord);
  const CanMessageRecord told = RecordOf(*message);
  EXPECT_EQ(told.identifier, 0x123u);
  EXPECT_EQ(told.extended, 1u);
  EXPECT_EQ(told.channel, 2u);
  EXPECT_EQ(told.direction, 3u);
  EXPECT_EQ(told.remote, 4u);
  EXPECT_EQ(told.time_ns, -5);
  EXPECT_EQ(told.data, kRecord.data);

  std::uint8_t part[2] = {};
  EXPECT_EQ(message->CopyData(1, part, 2), S_OK);
  EXPECT_EQ(part[0], 2);
  EXPECT_EQ(part[1], 3);
  EXPECT_EQ(message->CopyData(99, nullptr, 0), S_OK);
  EXPECT_EQ(NCommon::MakeCanMessage({})->CopyData(0, nullptr, 0), S_OK);
}

TEST(CanMessage, SavesDecimalTextAndLoadsItAgain) {
  const auto settings = NCom::Make<Settings>();
  ASSERT_EQ(Persistent(NCommon::MakeCanMessage(kRecord))->Save(settings.Get()), S_OK);
  const std::map<std::wstring, std::wstring> saved = {
      {L"CAN_ID", L"2147483939"}, {L"Extended", L"1"}, {L"Channel", L"2"}, {L"Dir", L"3"}, {L"RTR", L"4"},
      {L"Data", L"1 2 3"}};
  EXPECT_EQ(settings->values, saved);

  const auto loaded = NCommon::MakeCanMessage({});
  ASSERT_EQ(Persistent(loaded)->Load(settings.Get()), S_OK);
  EXPECT_EQ(RecordOf(*loaded).data, kRecord.data);
  settings->values.clear();
  ASSERT_EQ(Persistent(loaded)->Save(settings.Get()), S_OK);
  EXPECT_EQ(settings->values, saved) << "the mark survives";
}

TEST(CanMessage, DataTextOfAnyLength) {
  const std::pair<std::size_t, std::size_t> sizes[] = {{0, 0},    {1, 3},    {8, 31},
                                                       {32, 127}, {33, 127}, {5000, 127}};
  for (const auto& [size, characters] : sizes) {
    const auto settings = NCom::Make<Settings>();
    CanMessageRecord record;
    record.data.assign(size, 255);
    ASSERT_EQ(Persistent(NCommon::MakeCanMessage(record))->Save(settings.Get()), S_OK);
    EXPECT_EQ(settings->values[L"Data"].size(), characters) << size;
  }
}

TEST(CanMessage, ReadsWhateverTheDataTextHolds) {
  using Bytes = std::vector<std::uint8_t>;
  const std::pair<const wchar_t*, Bytes> rows[] = {
      {L"1 2 3", {1, 2, 3}},
      {L"0x10 255", {16, 255}},
      {L"x", {}},
      {L"", {}},
      {L" \t ", {}},
      {L"1 2 3 4 5 6 7 8 9 10", {1, 2, 3, 4, 5, 6, 7, 8}},
      {L"  7,8", {7}},
      {L"010 08", {8, 0, 8}},
      {L"1-2+3", {1, 254, 3}},
      {L"256 257 -1", {0, 1, 255}},
      {L"99999999999999999999999999 1", {0xFF, 1}},
      {L"0x", {}},
      {L"- 1", {}},
      {L"\u0661 1", {}},
  };
  for (const auto& [text, bytes] : rows) {
    const auto settings = NCom::Make<Settings>();
    settings->values = {{L"CAN_ID", L"5"}, {L"Extended", L"0"}, {L"Channel", L"1"},
                        {L"Dir", L"0"},    {L"RTR", L"0"},      {L"Data", text}};
    const auto message = NCommon::MakeCanMessage({.data = {0xAA, 0xBB}});
    ASSERT_EQ(Persistent(message)->Load(settings.Get()), S_OK);
    EXPECT_EQ(RecordOf(*message).data, bytes) << testing::PrintToString(text);
  }
}

TEST(CanMessage, LoadingEndsAtTheFirstMissingKey) {
  const auto settings = NCom::Make<Settings>();
  settings->values = {
      {L"CAN_ID", L"0x11"}, {L"Extended", L"junk"}, {L"Channel", L" -1 "}, {L"RTR", L"9"}, {L"Data", L"9"}};
  const auto message = NCommon::MakeCanMessage(kRecord);
  ASSERT_EQ(Persistent(message)->Load(settings.Get()), S_OK);
  const CanMessageRecord told = RecordOf(*message);
  EXPECT_EQ(told.identifier, 0u) << "decimal reading ends at the x";
  EXPECT_EQ(told.extended, kRecord.extended) << "no number, no change";
  EXPECT_EQ(told.channel, 0xFFFFFFFFu);
  EXPECT_EQ(told.direction, kRecord.direction);
  EXPECT_EQ(told.remote, kRecord.remote);
  EXPECT_EQ(told.data, kRecord.data);
}

TEST(CanMessage, PersistenceTellsFailuresAndAssertsItsArguments) {
  const auto object = Persistent(NCommon::MakeCanMessage(kRecord));
  NCom::TaskText progId;
  EXPECT_EQ(object->GetProgId(progId.Receive()), S_OK);
  EXPECT_EQ(progId.Text(), L"HarlowPlugIn.CANMessage");

  const auto settings = NCom::Make<Settings>();
  settings->refused = L"Dir";
  EXPECT_EQ(object->Save(settings.Get()), E_FAIL);

  const auto assertionOf = [](auto&& call) -> std::string {
    try {
      call();
      return "nothing";
    } catch (const NCom::ZAssertion& assertion) {
      return assertion.what();
    }
  };
  EXPECT_EQ(assertionOf([&] { object->Load(nullptr); }), "E:\"reader\"");
  EXPECT_EQ(assertionOf([&] { object->Save(nullptr); }), "E:\"writer\"");
}

}  // namespace
