// The engine frame against frame: good transfers, and each fault with the abort that it must send.

#include "tests/sdo/engine_owner.h"

namespace NSdoTest {
namespace {

using namespace NSdo;
using enum Kind;

struct GoodTransfer {
  const char* name;
  Kind kind;
  std::uint32_t size;  // download: bytes; upload: capacity
  const char* script;
  std::uint32_t transferred;
};

// Block size 4 and switch threshold 28 (1Ch) unless the server decides.
const GoodTransfer kGoodTransfers[] = {
    {"Download1", Download, 1, "> 2F 00 20 01 01 < 60 00 20 01", 1},
    {"Download0", Download, 0, "> 21 00 20 01 00 < 60 00 20 01 > 0F < 20", 0},
    {"Download5", Download, 5, "> 21 00 20 01 05 < 60 00 20 01 > 05 01 02 03 04 05 < 20", 5},
    {"Download15", Download, 15,
     "> 21 00 20 01 0F < 60 00 20 01 > 00 01 02 03 04 05 06 07 < 20 > 10 08 09 0A 0B 0C 0D 0E < 30 > 0D 0F < "
     "20",
     15},
    {"UploadExpeditedWithoutSize", Upload, 4, "> 40 00 20 01 < 42 00 20 01 01 02 03 04", 4},
    {"UploadAnsweredForAnotherIndex", Upload, 4, "> 40 00 20 01 < 4F 18 10 02 01", 1},
    {"UploadEmpty", Upload, 4, "> 40 00 20 01 < 40 00 20 01 > 60 < 0F", 0},
    {"UploadSegmentedWithoutSize", Upload, 100,
     "> 40 00 20 01 < 40 00 20 01 > 60 < 00 01 02 03 04 05 06 07 > 70 < 1C 08 > 60 < 0D 09", 9},
    {"BlockUpload", BlockUpload, 10,
     "> A4 00 20 01 04 1C < C6 00 20 01 0A > A3 < 01 01 02 03 04 05 06 07 < 82 08 09 0A > A2 02 04 < D1 4B "
     "CD > A1",
     10},
    {"BlockUploadWithoutCrc", BlockUpload, 10,
     "> A4 00 20 01 04 1C < C0 00 20 01 > A3 < 01 01 02 03 04 05 06 07 < 82 08 09 0A > A2 02 04 < D1 AB CD > "
     "A1",
     10},
    {"BlockUploadSwitchedToExpedited", BlockUpload, 4, "> A4 00 20 01 04 1C < 43 00 20 01 01 02 03 04", 4},
    {"BlockUploadSwitchedToSegmented", BlockUpload, 8,
     "> A4 00 20 01 04 1C < 41 00 20 01 05 > 60 < 05 01 02 03 04 05", 5},
    {"BlockDownload", BlockDownload, 10,
     "> C6 00 20 01 0A < A4 00 20 01 7F > 01 01 02 03 04 05 06 07 > 82 08 09 0A < A2 02 7F > D1 4B CD < A1",
     10},
    {"BlockDownloadEmpty", BlockDownload, 0, "> C6 00 20 01 00 < A0 00 20 01 05 > 81 < A2 01 05 > DD < A1",
     0},
    {"BlockDownloadKeepsItsFirstBlockSize", BlockDownload, 20,
     "> C6 00 20 01 14 < A4 00 20 01 01 > 01 01 02 03 04 05 06 07 < A2 01 7F > 01 08 09 0A 0B 0C 0D 0E < A2 "
     "01 7F > 81 0F 10 11 12 13 14 < A2 01 7F > C5 D3 EA < A1",
     20},
    {"BlockDownloadRepeatsASubBlockThatWasLost", BlockDownload, 20,
     "> C6 00 20 01 14 < A4 00 20 01 02 > 01 01 02 03 04 05 06 07 > 02 08 09 0A 0B 0C 0D 0E < A2 00 02 > 01 "
     "01 02 03 04 05 06 07 > 02 08 09 0A 0B 0C 0D 0E < A2 02 02 > 81 0F 10 11 12 13 14 < A2 01 02 > C5 D3 EA "
     "< A1",
     20},
};

TEST(SdoEngine, CarriesOutTransfers) {
  for (const GoodTransfer& good : kGoodTransfers) {
    SCOPED_TRACE(good.name);
    Owner owner;
    owner.Start(good.kind, good.size);
    EXPECT_EQ(owner.engine.startStatus, SDO_OK);
    owner.Play(good.script);
    EXPECT_TRUE(owner.engine.finished && owner.engine.succeeded);
    EXPECT_EQ(owner.completions, 1);
    const SdoResult result = SdoResultOf(owner.engine);
    EXPECT_EQ(result.transferred, good.transferred);
    EXPECT_EQ(result.state, SdoState::Idle);
    EXPECT_EQ(result.abortCode, 0u);
    owner.buffer.resize(result.transferred);
    EXPECT_EQ(owner.buffer, Counting(good.transferred));
    // Late frames find nobody.
    owner.Feed("80 00 20 01 00 00 04 05");
    EXPECT_EQ(owner.completions, 1);
    EXPECT_EQ(owner.AbortCode(), 0u);
  }
}

// Frames that bring a transfer to the point where the fault happens.
using Prelude = const char*;
constexpr Prelude kUpload = "> 40 00 20 01";
constexpr Prelude kUploadSegments = "> 40 00 20 01 < 40 00 20 01 > 60";
constexpr Prelude kDownload20 = "> 21 00 20 01 14 < 60 00 20 01 > 00 01 02 03 04 05 06 07";
constexpr Prelude kExpedited = "> 23 00 20 01 01 02 03 04";
constexpr Prelude kBlockUpload = "> A4 00 20 01 04 1C";
constexpr Prelude kBlockUploadSegments = "> A4 00 20 01 04 1C < C4 00 20 01 > A3";
constexpr Prelude kBlockUploadEnding = "> A4 00 20 01 04 1C < C4 00 20 01 > A3 < 81 01 02 03 > A2 01 04";
constexpr Prelude kBlockDownload = "> C6 00 20 01 14";
constexpr Prelude kBlockDownloadSending =
    "> C6 00 20 01 14 < A4 00 20 01 02 > 01 01 02 03 04 05 06 07 > 02 08 09 0A 0B 0C 0D 0E";
constexpr Prelude kBlockDownloadEnding =
    "> C6 00 20 01 03 < A4 00 20 01 02 > 81 01 02 03 < A2 01 02 > D1 31 61";

struct Fault {
  const char* name;
  Kind kind;
  std::uint32_t size;
  Prelude prelude;
  std::vector<const char*> answers;  // the last one is the fault
  std::uint32_t abortCode;
};

const Fault kFaults[] = {
    // Answers that belong to another transfer.
    {"SegmentBeforeInitiate", Upload, 9, kUpload, {"00"}, 0x05040001},
    {"DownloadAnswerInUpload", Upload, 9, kUpload, {"60"}, 0x05040001},
    {"DownloadSegmentAnswerInUpload", Upload, 9, kUpload, {"20"}, 0x05040001},
    {"BlockUploadAnswerInUpload", Upload, 9, kUpload, {"C2 00 20 01"}, 0x05040001},
    {"BlockUploadEndInUpload", Upload, 9, kUpload, {"C1"}, 0x05040001},
    {"BlockDownloadAnswerInUpload", Upload, 9, kUpload, {"A4 00 20 01 04"}, 0x05040001},
    {"BlockDownloadAckInUpload", Upload, 9, kUpload, {"A2 01"}, 0x05040001},
    {"UploadAnswerInDownload", Download, 4, kExpedited, {"43 00 20 01"}, 0x05040001},
    {"UploadAnswerTwice", Upload, 9, kUploadSegments, {"40 00 20 01"}, 0x05040001},
    {"BlockDownloadAnswerTwice", BlockDownload, 20, kBlockDownloadSending, {"A4 00 20 01 02"}, 0x05040001},
    {"BlockUploadEndTooEarly", BlockUpload, 20, kBlockUpload, {"C1"}, 0x05040001},
    {"BlockDownloadAckTooEarly", BlockDownload, 20, kBlockDownload, {"A2 01 02"}, 0x05040001},
    // Toggle.
    {"UploadFirstToggle", Upload, 9, kUploadSegments, {"10"}, 0x05030000},
    {"DownloadFirstToggle", Download, 20, kDownload20, {"30"}, 0x05030000},
    {"ExpeditedDownloadToggle", Download, 4, kExpedited, {"70"}, 0x05030000},
    // Sizes.
    {"IndicatedSizeTooHigh", Upload, 9, kUpload, {"41 00 20 01 0A"}, 0x06070012},
    {"IndicatedSizeHuge", Upload, 9, kUpload, {"41 00 20 01 FF FF FF FF"}, 0x06070012},
    {"ExpeditedTooLong", Upload, 2, kUpload, {"47 00 20 01 01 02 03"}, 0x06070012},
    {"ExpeditedWithoutSizeTooLong", Upload, 3, kUpload, {"42 00 20 01"}, 0x06070012},
    {"SegmentTooLong", Upload, 6, kUploadSegments, {"00"}, 0x06070012},
    {"BlockIndicatedSizeTooHigh", BlockUpload, 9, kBlockUpload, {"C6 00 20 01 0A"}, 0x06070012},
    {"BlockSwitchedSizeTooHigh", BlockUpload, 9, kBlockUpload, {"41 00 20 01 0A"}, 0x06070012},
    // Block upload.
    {"BlockUploadOfAnotherIndex", BlockUpload, 9, kBlockUpload, {"C6 01 20 01 04"}, 0x06040043},
    {"BlockUploadOfAnotherSubindex", BlockUpload, 9, kBlockUpload, {"C6 00 20 02 04"}, 0x06040043},
    {"SequenceStartsAtTwo", BlockUpload, 99, kBlockUploadSegments, {"02"}, 0x05040003},
    {"SequenceZero", BlockUpload, 99, kBlockUploadSegments, {"00"}, 0x05040003},
    {"BufferFull", BlockUpload, 10, kBlockUploadSegments, {"01", "02", "03"}, 0x05040005},
    {"LastSegmentBehindTheBuffer", BlockUpload, 2, kBlockUploadEnding, {"D1 31 61"}, 0x05040005},
    {"WrongCrc", BlockUpload, 9, kBlockUploadEnding, {"D1 31 00"}, 0x05040004},
    // Block download.
    {"ServerBlockSize0", BlockDownload, 20, kBlockDownload, {"A4 00 20 01 00"}, 0x05040002},
    {"ServerBlockSize128", BlockDownload, 20, kBlockDownload, {"A4 00 20 01 80"}, 0x05040002},
    {"PartialAcknowledge", BlockDownload, 20, kBlockDownloadSending, {"A2 01 02"}, 0x05040002},
    {"AcknowledgeBeyondTheSubBlock", BlockDownload, 20, kBlockDownloadSending, {"A2 03 02"}, 0x05040002},
    {"AcknowledgeTwiceAtTheEnd", BlockDownload, 3, kBlockDownloadEnding, {"A2 01 02"}, 0x05040001},
};

TEST(SdoEngine, AbortsOnFaults) {
  for (const Fault& fault : kFaults) {
    SCOPED_TRACE(fault.name);
    Owner owner;
    owner.Start(fault.kind, fault.size);
    owner.Play(fault.prelude);
    for (const char* answer : fault.answers) {
      EXPECT_FALSE(owner.engine.finished);
      owner.sent.clear();
      owner.Feed(answer);
    }
    owner.ExpectAbort(fault.abortCode);
    EXPECT_TRUE(owner.engine.finished);
    EXPECT_FALSE(owner.engine.succeeded);
    EXPECT_EQ(owner.completions, 1);
    EXPECT_EQ(owner.AbortCode(), fault.abortCode);
    EXPECT_EQ(SdoResultOf(owner.engine).state, SdoState::Idle);
  }
}

TEST(SdoEngine, AbortsWhenTheToggleStopsAlternating) {
  Owner owner;
  owner.Start(Upload, 99);
  owner.Play("> 40 00 20 01 < 40 00 20 01 > 60 < 00 > 70 < 00 > 80 00 20 01 00 00 03 05");
  owner.Start(Download, 99);
  owner.sent.clear();
  owner.Feed("60");
  owner.Feed("20");
  owner.sent.clear();
  owner.Feed("20");
  owner.ExpectAbort(0x05030000);
}

TEST(SdoEngine, TakesTheServersAbortInEveryState) {
  struct Case {
    Kind kind;
    std::uint32_t size;
    Prelude prelude;
  };
  const Case cases[] = {{Upload, 9, kUpload},
                        {Upload, 9, kUploadSegments},
                        {Download, 20, kDownload20},
                        {Download, 4, kExpedited},
                        {BlockUpload, 9, kBlockUpload},
                        {BlockUpload, 9, kBlockUploadEnding},
                        {BlockDownload, 20, kBlockDownload},
                        {BlockDownload, 20, kBlockDownloadSending},
                        {BlockDownload, 3, kBlockDownloadEnding}};
  for (const Case& each : cases) {
    Owner owner;
    owner.Start(each.kind, each.size);
    owner.Play(each.prelude);
    // The index is that of an earlier request: servers do that.
    owner.Play("< 80 00 00 00 02 00 02 06");
    EXPECT_TRUE(owner.engine.finished && !owner.engine.succeeded);
    EXPECT_EQ(owner.AbortCode(), 0x06020002u) << "codes outside the table are kept too";
  }
  // Within a sub-block every frame is a segment, and this one is out of order.
  Owner owner;
  owner.Start(BlockUpload, 99);
  owner.Play(kBlockUploadSegments);
  owner.Feed("80 00 20 01 00 00 00 08");
  owner.ExpectAbort(0x05040003);
}

TEST(SdoEngine, IgnoresWhatIsNotForTheTransfer) {
  Owner owner;
  owner.Start(Upload, 9);
  owner.Play(kUpload);
  for (const char* command : {"E0", "FF", "A3", "C3"}) owner.Feed(command);
  SdoFeed(owner.engine, NTest::SdoFrame(0x586, "4F 00 20 01 01"));
  SdoFeed(owner.engine, NTest::SdoFrame(0x20000585, "4F 00 20 01 01"));
  SdoFeed(owner.engine, NTest::SdoFrame(0x605, "4F 00 20 01 01"));
  EXPECT_FALSE(owner.engine.finished);
  owner.Play("< 4F 00 20 01 01");
  EXPECT_TRUE(owner.engine.succeeded);
}

TEST(SdoEngine, NotesAnEndThatComesTooEarlyAndGoesOn) {
  Owner owner;
  owner.Start(BlockDownload, 20);
  owner.Play(kBlockDownloadSending);
  owner.Play("< A1");
  EXPECT_FALSE(owner.engine.finished);
  EXPECT_EQ(owner.AbortCode(), 0x05040001u);
  owner.Play("< A2 02 > 81 0F 10 11 12 13 14");
}

// A short last segment leaves the position off the grid of seven; a server that goes on refusing must not
// drag it in front of the data.
TEST(SdoEngine, RewindsToTheStartOfTheDataAtMost) {
  Owner owner;
  owner.Start(BlockDownload, 10);
  owner.Play("> C6 00 20 01 0A < A4 00 20 01 01 > 01 01 02 03 04 05 06 07 < A2 01 > 81 08 09 0A");
  for (int i = 0; i < 5; ++i) owner.Play("< A2 00 > 01 01 02 03 04 05 06 07");
}

// What a transfer that broke off has left in the channel must not count in the next one.
TEST(SdoEngine, StartsFromNothingAfterATransferThatBrokeOff) {
  Owner owner;
  owner.Start(BlockUpload, 99);
  owner.Play(kBlockUploadSegments);
  owner.Feed("01");
  owner.Feed("09");
  owner.ExpectAbort(0x05040003);
  owner.Start(BlockUpload, 99);
  owner.Play(kBlockUploadSegments);
  owner.Play("< 01 < 82 > A2 02 04 < 80 00 20 01");

  owner.Start(BlockDownload, 3);
  owner.Play(kBlockDownloadEnding);
  owner.Play("< 80 00 20 01");
  owner.Start(BlockDownload, 20);
  owner.Play(
      "> C6 00 20 01 14 < A4 00 20 01 01 > 01 01 02 03 04 05 06 07 < A2 01 > 01 08 09 0A 0B 0C 0D 0E < A2 00 "
      "> 01 08 09 0A 0B 0C 0D 0E");
}

TEST(SdoEngine, SpeaksWith29BitIdentifiers) {
  Owner owner;
  owner.buffer.resize(4);
  SdoRead(owner.engine, 5, 0x2000, 1, owner.buffer.data(), 4, 0x32345678, 0x2ABCDEF0, 0, 0);
  ASSERT_EQ(owner.sent.size(), 1u);
  EXPECT_EQ(owner.sent[0].identifier, 0x0ABCDEF0u);
  EXPECT_EQ(owner.sent[0].flags, 8u | NSdk::kFrameExtended);
  SdoFeed(owner.engine, NTest::SdoFrame(0x12345678, "4F 00 20 01 01"));
  EXPECT_FALSE(owner.engine.finished) << "without the extended flag it is another COB-ID";
  SdoFeed(owner.engine, NTest::SdoFrame(0x32345678, "4F 00 20 01 01"));
  EXPECT_TRUE(owner.engine.succeeded);
}

}  // namespace
}  // namespace NSdoTest
