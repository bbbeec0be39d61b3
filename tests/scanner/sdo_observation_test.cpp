#include <gtest/gtest.h>

#include <sstream>

#include "com/implements.h"
#include "sdo/data_object.h"
#include "sdo/sd_manager.h"
#include "tests/scanner/frames.h"

namespace NTest {
namespace {

// Notes what it is asked and given: "? 605 1008/0 size 0", "= 605 ch 1 1008/0 4D697831".
class Delegate final : public NCom::Implements<NSdk::ICANopenSDManagerDelegate> {
 public:
  HRESULT STDMETHODCALLTYPE QueryUpload(const NSdk::SdoRequest* request, std::uint32_t* answer) override {
    EXPECT_EQ(request->kind, NSdk::kSdoUploadRequest);
    *answer = request->index == 0x2FFF ? 2 : 1;
    return request->index == 0x2FFE ? E_FAIL : S_OK;
  }

  HRESULT STDMETHODCALLTYPE OnUploadComplete(std::uint32_t cobId, std::uint32_t channel,
                                             NSdk::ICANopenDataObject* object) override {
    std::uint16_t index = 0;
    std::uint8_t subindex = 0;
    std::uint8_t bytes[64];
    std::uint32_t size = 0;
    object->GetIndex(&index, &subindex);
    object->GetBytes(sizeof(bytes), bytes, &size);
    char text[32];
    std::snprintf(text, sizeof(text), "%u:%X %X/%X ", channel, cobId, index, subindex);
    uploads += (uploads.empty() ? "" : "; ") + std::string(text);
    for (std::uint32_t i = 0; i < size; ++i) {
      std::snprintf(text, sizeof(text), "%02X", bytes[i]);
      uploads += text;
    }
    return S_OK;
  }

  std::string uploads;
};

// Frames of one channel, or of the one named in front ("2:605#..."); "+300" lets that many milliseconds pass
// in ticks of 100.
std::string Observe(const std::string& script) {
  const auto manager = NCom::Make<NSdo::ZCANopenSDManager>();
  const auto delegate = NCom::Make<Delegate>();
  manager->SetDelegate(delegate.Get());
  std::istringstream words(script);
  for (std::string word; words >> word;) {
    if (word[0] == '+') {
      for (int left = std::atoi(word.c_str()); left > 0; left -= 100) manager->Tick(100);
      continue;
    }
    const bool named = word[1] == ':';
    const std::uint32_t channel = named ? static_cast<std::uint32_t>(word[0] - '0') : 1;
    EXPECT_EQ(manager->ProcessMessage(Message(channel, named ? word.substr(2) : word).Get()), S_OK);
  }
  manager->SetDelegate(nullptr);
  return delegate->uploads;
}

TEST(SdoObservation, FollowsUploads) {
  const struct {
    const char* what;
    const char* frames;
    const char* uploads;
  } cases[] = {
      {"expedited, 4 bytes", "605#4018100100000000 585#4318100178563412", "1:605 1018/1 78563412"},
      {"expedited, 1 byte", "605#4000200500000000 585#4F002005AA000000", "1:605 2000/5 AA"},
      {"expedited without size", "605#4008100000000000 585#420810004D697831", "1:605 1008/0 "},
      {"segmented",
       "67F#4008100000000000 5FF#410810000A000000 67F#60 5FF#0030313233343536 67F#70 5FF#1937383900000000",
       "1:67F 1008/0 30313233343536373839"},
      {"segmented, size not told, toggles wrong",
       "601#4008100000000000 581#4008100000000000 601#60 581#0030313233343536 601#60 581#0D37000000000000",
       "1:601 1008/0 3031323334353637"},
      {"more than was told is left away",
       "601#4008100000000000 581#4108100008000000 601#60 581#0030313233343536 601#70 581#1137383900000000",
       "1:601 1008/0 3031323334353600"},
      {"two at once, on different channels and nodes",
       "1:605#4018100100000000 2:606#4018100400000000 2:585#4318100111111111 2:586#4318100466666666 "
       "1:585#4318100155555555",
       "2:606 1018/4 66666666; 1:605 1018/1 55555555"},
      {"begun anew", "605#4018100100000000 605#4018100400000000 585#4318100444444444",
       "1:605 1018/4 44444444"},
      {"abort", "605#4018100100000000 585#8018100100000206 585#4318100144444444", ""},
      {"an answer of another service", "605#4018100100000000 585#60 585#4318100144444444", ""},
      {"announced beyond reason", "605#4008100000000000 585#41081000FFFFFFFF 605#60 585#0130313233343536",
       ""},
      {"not wanted", "605#40FF2F0000000000 585#4300200044444444", ""},
      {"the delegate fails", "605#40FE2F0000000000 585#4300200044444444", ""},
      {"a request that nobody made", "585#4318100144444444", ""},
      {"identifiers beside the default ones",
       "600#4018100100000000 580#4318100144444444 680#4018100100000000 600#4318100144444444", ""},
      {"a download", "605#2B171000E8030000 585#6017100000000000", ""},
      {"remote frames", "605#R 605#4018100100000000 585#R 585#4318100155555555", "1:605 1018/1 55555555"},
      {"in time", "605#4018100100000000 +400 585#4318100155555555", "1:605 1018/1 55555555"},
      {"too late", "605#4018100100000000 +500 585#4318100155555555", ""},
      {"every frame renews the patience",
       "605#4008100000000000 +400 585#4108100001000000 +400 605#60 +400 585#0D41000000000000",
       "1:605 1008/0 41"},
  };
  for (const auto& row : cases) EXPECT_EQ(Observe(row.frames), row.uploads) << row.what;
}

TEST(SdoObservation, ConnectionsThatEndTogetherLeaveOnePerTick) {
  // The second one has timed out with the first, but is still there when its answer comes.
  EXPECT_EQ(
      Observe("605#4018100100000000 606#4018100100000000 +500 585#4318100155555555 586#4318100166666666"),
      "1:606 1018/1 66666666");
  EXPECT_EQ(
      Observe("605#4018100100000000 606#4018100100000000 +600 585#4318100155555555 586#4318100166666666"),
      "");
}

TEST(DataObject, HoldsValuesInlineAndOnTheHeap) {
  const auto object = NSdo::CreateDataObjectWithValue(0x1018, 4, 2, 0x1234);
  std::uint32_t number = 0;
  std::int32_t signedNumber = 0;
  float real = 0;
  char text[8] = "unset";
  std::uint8_t bytes[8] = {};
  std::uint32_t count = 99;
  EXPECT_EQ(object->GetUnsigned(&number), S_OK);
  EXPECT_EQ(number, 0x1234u);
  EXPECT_EQ(object->GetFloat(&real), S_OK);
  EXPECT_EQ(real, 4660.0f);
  EXPECT_EQ(object->WriteBytes(1, 1, reinterpret_cast<const std::uint8_t*>("\xAB")), S_OK);
  EXPECT_EQ(object->GetSigned(&signedNumber), S_OK);
  EXPECT_EQ(signedNumber, 0xAB34);
  EXPECT_EQ(object->WriteBytes(1, 2, bytes), E_INVALIDARG);
  EXPECT_EQ(object->GetUnsigned(nullptr), E_INVALIDARG);

  EXPECT_EQ(object->SetValue(7, reinterpret_cast<const std::uint8_t*>("valve 7")), S_OK);
  EXPECT_EQ(object->GetUnsigned(&number), E_FAIL);
  EXPECT_EQ(object->GetFloat(&real), E_FAIL);
  EXPECT_EQ(object->WriteBytes(5, 3, bytes), E_INVALIDARG);
  EXPECT_EQ(object->WriteBytes(0xFFFFFFFF, 8, bytes), E_INVALIDARG);
  EXPECT_EQ(object->GetString(1, text), S_OK);
  EXPECT_STREQ(text, "");
  EXPECT_EQ(object->GetString(6, text), S_OK);
  EXPECT_STREQ(text, "valve");
  EXPECT_EQ(object->GetString(sizeof(text), text), S_OK);
  EXPECT_STREQ(text, "valve 7");
  EXPECT_EQ(object->GetString(0, text), E_INVALIDARG);
  EXPECT_EQ(object->GetBytes(4, bytes, &count), S_OK);
  EXPECT_EQ(count, 4u);

  EXPECT_EQ(object->SetValue(8, nullptr), S_OK);
  EXPECT_EQ(object->GetBytes(8, bytes, &count), S_OK);
  EXPECT_EQ(std::string(bytes, bytes + 8), std::string(8, '\0'));
  EXPECT_EQ(object->SetValue(2, reinterpret_cast<const std::uint8_t*>("\x07\x01")), S_OK);
  EXPECT_EQ(object->SetValue(3, nullptr), S_OK);
  EXPECT_EQ(object->GetUnsigned(&number), S_OK);
  EXPECT_EQ(number, 0x107u);
  EXPECT_EQ(object->FreeValue(), S_OK);
  EXPECT_EQ(object->GetSize(&count), S_OK);
  EXPECT_EQ(count, 0u);
}

}  // namespace
}  // namespace NTest
