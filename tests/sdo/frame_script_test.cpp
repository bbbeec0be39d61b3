// The engine frame against frame: good transfers, and each fault with the abort that it must send.

#include "tests/sdo/engine_owner.h"

namespace NSdoTest {
namespace {

using namespace NSdo;

struct GoodTransfer {
  const char* name;
  Kind kind;
  std::uint32_t size;  // download: bytes; upload: capacity
  std::vector<Line> script;
  std::uint32_t transferred;
};

// Block size 4 and switch threshold 28 (1Ch) unless the server decides.
const GoodTransfer kGoodTransfers[] = {
    {"Download1", Kind::Download, 1, {{TX, "2F 00 20 01 01"}, {RX, "60 00 20 01"}}, 1},
    {"Download2", Kind::Download, 2, {{TX, "2B 00 20 01 01 02"}, {RX, "60 00 20 01"}}, 2},
    {"Download4", Kind::Download, 4, {{TX, "23 00 20 01 01 02 03 04"}, {RX, "60 00 20 01"}}, 4},
    {"Download0",
     Kind::Download,
     0,
     {{TX, "21 00 20 01 00"}, {RX, "60 00 20 01"}, {TX, "0F"}, {RX, "20"}},
     0},
    {"Download5",
     Kind::Download,
     5,
     {{TX, "21 00 20 01 05"}, {RX, "60 00 20 01"}, {TX, "05 01 02 03 04 05"}, {RX, "20"}},
     5},
    {"Download7",
     Kind::Download,
     7,
     {{TX, "21 00 20 01 07"}, {RX, "60 00 20 01"}, {TX, "01 01 02 03 04 05 06 07"}, {RX, "20"}},
     7},
    {"Download15",
     Kind::Download,
     15,
     {{TX, "21 00 20 01 0F"},
      {RX, "60 00 20 01"},
      {TX, "00 01 02 03 04 05 06 07"},
      {RX, "20"},
      {TX, "10 08 09 0A 0B 0C 0D 0E"},
      {RX, "30"},
      {TX, "0D 0F"},
      {RX, "20"}},
     15},
    {"UploadExpedited", Kind::Upload, 8, {{TX, "40 00 20 01"}, {RX, "4B 00 20 01 01 02"}}, 2},
    {"UploadExpeditedWithoutSize",
     Kind::Upload,
     4,
     {{TX, "40 00 20 01"}, {RX, "42 00 20 01 01 02 03 04"}},
     4},
    {"UploadAnsweredForAnotherIndex", Kind::Upload, 4, {{TX, "40 00 20 01"}, {RX, "4F 18 10 02 01"}}, 1},
    {"UploadEmpty", Kind::Upload, 4, {{TX, "40 00 20 01"}, {RX, "40 00 20 01"}, {TX, "60"}, {RX, "0F"}}, 0},
    {"UploadSegmented",
     Kind::Upload,
     8,
     {{TX, "40 00 20 01"},
      {RX, "41 00 20 01 08"},
      {TX, "60"},
      {RX, "00 01 02 03 04 05 06 07"},
      {TX, "70"},
      {RX, "1D 08"}},
     8},
    {"UploadSegmentedWithoutSize",
     Kind::Upload,
     100,
     {{TX, "40 00 20 01"},
      {RX, "40 00 20 01"},
      {TX, "60"},
      {RX, "00 01 02 03 04 05 06 07"},
      {TX, "70"},
      {RX, "1C 08"},  // a short segment in the middle
      {TX, "60"},
      {RX, "0D 09"}},
     9},
    {"BlockUpload",
     Kind::BlockUpload,
     10,
     {{TX, "A4 00 20 01 04 1C"},
      {RX, "C6 00 20 01 0A"},
      {TX, "A3"},
      {RX, "01 01 02 03 04 05 06 07"},
      {RX, "82 08 09 0A"},
      {TX, "A2 02 04"},
      {RX, "D1 4B CD"},
      {TX, "A1"}},
     10},
    {"BlockUploadWithoutCrc",
     Kind::BlockUpload,
     10,
     {{TX, "A4 00 20 01 04 1C"},
      {RX, "C0 00 20 01"},
      {TX, "A3"},
      {RX, "01 01 02 03 04 05 06 07"},
      {RX, "82 08 09 0A"},
      {TX, "A2 02 04"},
      {RX, "D1 AB CD"},  // meaningless: none was announced
      {TX, "A1"}},
     10},
    {"BlockUploadEmpty",
     Kind::BlockUpload,
     0,
     {{TX, "A4 00 20 01 04 1C"},
      {RX, "C6 00 20 01"},
      {TX, "A3"},
      {RX, "81"},
      {TX, "A2 01 04"},
      {RX, "DD"},
      {TX, "A1"}},
     0},
    {"BlockUploadSwitchedToExpedited",
     Kind::BlockUpload,
     4,
     {{TX, "A4 00 20 01 04 1C"}, {RX, "43 00 20 01 01 02 03 04"}},
     4},
    {"BlockUploadSwitchedToSegmented",
     Kind::BlockUpload,
     8,
     {{TX, "A4 00 20 01 04 1C"}, {RX, "41 00 20 01 05"}, {TX, "60"}, {RX, "05 01 02 03 04 05"}},
     5},
    {"BlockDownload",
     Kind::BlockDownload,
     10,
     {{TX, "C6 00 20 01 0A"},
      {RX, "A4 00 20 01 7F"},
      {TX, "01 01 02 03 04 05 06 07"},
      {TX, "82 08 09 0A"},
      {RX, "A2 02 7F"},
      {TX, "D1 4B CD"},
      {RX, "A1"}},
     10},
    {"BlockDownloadEmpty",
     Kind::BlockDownload,
     0,
     {{TX, "C6 00 20 01 00"}, {RX, "A0 00 20 01 05"}, {TX, "81"}, {RX, "A2 01 05"}, {TX, "DD"}, {RX, "A1"}},
     0},
    {"BlockDownloadKeepsItsFirstBlockSize",
     Kind::BlockDownload,
     20,
     {{TX, "C6 00 20 01 14"},
      {RX, "A4 00 20 01 01"},
      {TX, "01 01 02 03 04 05 06 07"},
      {RX, "A2 01 7F"},
      {TX, "01 08 09 0A 0B 0C 0D 0E"},
      {RX, "A2 01 7F"},
      {TX, "81 0F 10 11 12 13 14"},
      {RX, "A2 01 7F"},
      {TX, "C5 D3 EA"},
      {RX, "A1"}},
     20},
    {"BlockDownloadRepeatsASubBlockThatWasLost",
     Kind::BlockDownload,
     20,
     {{TX, "C6 00 20 01 14"},
      {RX, "A4 00 20 01 02"},
      {TX, "01 01 02 03 04 05 06 07"},
      {TX, "02 08 09 0A 0B 0C 0D 0E"},
      {RX, "A2 00 02"},
      {TX, "01 01 02 03 04 05 06 07"},
      {TX, "02 08 09 0A 0B 0C 0D 0E"},
      {RX, "A2 02 02"},
      {TX, "81 0F 10 11 12 13 14"},
      {RX, "A2 01 02"},
      {TX, "C5 D3 EA"},
      {RX, "A1"}},
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
using Prelude = std::vector<Line>;
const Prelude kUpload = {{TX, "40 00 20 01"}};
const Prelude kUploadSegments = {{TX, "40 00 20 01"}, {RX, "40 00 20 01"}, {TX, "60"}};
const Prelude kDownload20 = {{TX, "21 00 20 01 14"}, {RX, "60 00 20 01"}, {TX, "00 01 02 03 04 05 06 07"}};
const Prelude kExpedited = {{TX, "23 00 20 01 01 02 03 04"}};
const Prelude kBlockUpload = {{TX, "A4 00 20 01 04 1C"}};
const Prelude kBlockUploadSegments = {{TX, "A4 00 20 01 04 1C"}, {RX, "C4 00 20 01"}, {TX, "A3"}};
const Prelude kBlockUploadEnding = {
    {TX, "A4 00 20 01 04 1C"}, {RX, "C4 00 20 01"}, {TX, "A3"}, {RX, "81 01 02 03"}, {TX, "A2 01 04"}};
const Prelude kBlockDownload = {{TX, "C6 00 20 01 14"}};
const Prelude kBlockDownloadSending = {{TX, "C6 00 20 01 14"},
                                       {RX, "A4 00 20 01 02"},
                                       {TX, "01 01 02 03 04 05 06 07"},
                                       {TX, "02 08 09 0A 0B 0C 0D 0E"}};
const Prelude kBlockDownloadEnding = {
    {TX, "C6 00 20 01 03"}, {RX, "A4 00 20 01 02"}, {TX, "81 01 02 03"}, {RX, "A2 01 02"}, {TX, "D1 31 61"}};

struct Fault {
  const char* name;
  Kind kind;
  std::uint32_t size;
  const Prelude& prelude;
  std::vector<const char*> answers;  // the last one is the fault
  std::uint32_t abortCode;
};

const Fault kFaults[] = {
    // Answers that belong to another transfer.
    {"SegmentBeforeInitiate", Kind::Upload, 9, kUpload, {"00"}, 0x05040001},
    {"DownloadAnswerInUpload", Kind::Upload, 9, kUpload, {"60"}, 0x05040001},
    {"DownloadSegmentAnswerInUpload", Kind::Upload, 9, kUpload, {"20"}, 0x05040001},
    {"BlockUploadAnswerInUpload", Kind::Upload, 9, kUpload, {"C2 00 20 01"}, 0x05040001},
    {"BlockUploadEndInUpload", Kind::Upload, 9, kUpload, {"C1"}, 0x05040001},
    {"BlockDownloadAnswerInUpload", Kind::Upload, 9, kUpload, {"A4 00 20 01 04"}, 0x05040001},
    {"BlockDownloadAckInUpload", Kind::Upload, 9, kUpload, {"A2 01"}, 0x05040001},
    {"UploadAnswerInDownload", Kind::Download, 4, kExpedited, {"43 00 20 01"}, 0x05040001},
    {"UploadAnswerTwice", Kind::Upload, 9, kUploadSegments, {"40 00 20 01"}, 0x05040001},
    {"BlockDownloadAnswerTwice",
     Kind::BlockDownload,
     20,
     kBlockDownloadSending,
     {"A4 00 20 01 02"},
     0x05040001},
    {"BlockUploadEndTooEarly", Kind::BlockUpload, 20, kBlockUpload, {"C1"}, 0x05040001},
    {"BlockDownloadAckTooEarly", Kind::BlockDownload, 20, kBlockDownload, {"A2 01 02"}, 0x05040001},
    // Toggle.
    {"UploadFirstToggle", Kind::Upload, 9, kUploadSegments, {"10"}, 0x05030000},
    {"DownloadFirstToggle", Kind::Download, 20, kDownload20, {"30"}, 0x05030000},
    {"ExpeditedDownloadToggle", Kind::Download, 4, kExpedited, {"70"}, 0x05030000},
    // Sizes.
    {"IndicatedSizeTooHigh", Kind::Upload, 9, kUpload, {"41 00 20 01 0A"}, 0x06070012},
    {"IndicatedSizeHuge", Kind::Upload, 9, kUpload, {"41 00 20 01 FF FF FF FF"}, 0x06070012},
    {"ExpeditedTooLong", Kind::Upload, 2, kUpload, {"47 00 20 01 01 02 03"}, 0x06070012},
    {"ExpeditedWithoutSizeTooLong", Kind::Upload, 3, kUpload, {"42 00 20 01"}, 0x06070012},
    {"SegmentTooLong", Kind::Upload, 6, kUploadSegments, {"00"}, 0x06070012},
    {"BlockIndicatedSizeTooHigh", Kind::BlockUpload, 9, kBlockUpload, {"C6 00 20 01 0A"}, 0x06070012},
    {"BlockSwitchedSizeTooHigh", Kind::BlockUpload, 9, kBlockUpload, {"41 00 20 01 0A"}, 0x06070012},
    // Block upload.
    {"BlockUploadOfAnotherIndex", Kind::BlockUpload, 9, kBlockUpload, {"C6 01 20 01 04"}, 0x06040043},
    {"BlockUploadOfAnotherSubindex", Kind::BlockUpload, 9, kBlockUpload, {"C6 00 20 02 04"}, 0x06040043},
    {"SequenceStartsAtTwo", Kind::BlockUpload, 99, kBlockUploadSegments, {"02"}, 0x05040003},
    {"SequenceZero", Kind::BlockUpload, 99, kBlockUploadSegments, {"00"}, 0x05040003},
    {"BufferFull", Kind::BlockUpload, 10, kBlockUploadSegments, {"01", "02", "03"}, 0x05040005},
    {"LastSegmentBehindTheBuffer", Kind::BlockUpload, 2, kBlockUploadEnding, {"D1 31 61"}, 0x05040005},
    {"WrongCrc", Kind::BlockUpload, 9, kBlockUploadEnding, {"D1 31 00"}, 0x05040004},
    // Block download.
    {"ServerBlockSize0", Kind::BlockDownload, 20, kBlockDownload, {"A4 00 20 01 00"}, 0x05040002},
    {"ServerBlockSize128", Kind::BlockDownload, 20, kBlockDownload, {"A4 00 20 01 80"}, 0x05040002},
    {"PartialAcknowledge", Kind::BlockDownload, 20, kBlockDownloadSending, {"A2 01 02"}, 0x05040002},
    {"AcknowledgeBeyondTheSubBlock",
     Kind::BlockDownload,
     20,
     kBlockDownloadSending,
     {"A2 03 02"},
     0x05040002},
    {"AcknowledgeTwiceAtTheEnd", Kind::BlockDownload, 3, kBlockDownloadEnding, {"A2 01 02"}, 0x05040001},
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
  owner.Start(Kind::Upload, 99);
  owner.Play({{TX, "40 00 20 01"},
              {RX, "40 00 20 01"},
              {TX, "60"},
              {RX, "00"},
              {TX, "70"},
              {RX, "00"},
              {TX, "80 00 20 01 00 00 03 05"}});
  owner.Start(Kind::Download, 99);
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
    const Prelude& prelude;
  };
  const Case cases[] = {{Kind::Upload, 9, kUpload},
                        {Kind::Upload, 9, kUploadSegments},
                        {Kind::Download, 20, kDownload20},
                        {Kind::Download, 4, kExpedited},
                        {Kind::BlockUpload, 9, kBlockUpload},
                        {Kind::BlockUpload, 9, kBlockUploadEnding},
                        {Kind::BlockDownload, 20, kBlockDownload},
                        {Kind::BlockDownload, 20, kBlockDownloadSending},
                        {Kind::BlockDownload, 3, kBlockDownloadEnding}};
  for (const Case& each : cases) {
    Owner owner;
    owner.Start(each.kind, each.size);
    owner.Play(each.prelude);
    // The index is that of an earlier request: servers do that.
    owner.Play({{RX, "80 00 00 00 02 00 02 06"}});
    EXPECT_TRUE(owner.engine.finished && !owner.engine.succeeded);
    EXPECT_EQ(owner.AbortCode(), 0x06020002u) << "codes outside the table are kept too";
  }
  // Within a sub-block every frame is a segment, and this one is out of order.
  Owner owner;
  owner.Start(Kind::BlockUpload, 99);
  owner.Play(kBlockUploadSegments);
  owner.Feed("80 00 20 01 00 00 00 08");
  owner.ExpectAbort(0x05040003);
}

TEST(SdoEngine, IgnoresWhatIsNotForTheTransfer) {
  Owner owner;
  owner.Start(Kind::Upload, 9);
  owner.Play(kUpload);
  for (const char* command : {"E0", "FF", "A3", "C3"}) owner.Feed(command);
  SdoFeed(owner.engine, Frame(0x586, "4F 00 20 01 01"));
  SdoFeed(owner.engine, Frame(0x20000585, "4F 00 20 01 01"));
  SdoFeed(owner.engine, Frame(0x605, "4F 00 20 01 01"));
  EXPECT_FALSE(owner.engine.finished);
  owner.Play({{RX, "4F 00 20 01 01"}});
  EXPECT_TRUE(owner.engine.succeeded);
}

TEST(SdoEngine, NotesAnEndThatComesTooEarlyAndGoesOn) {
  Owner owner;
  owner.Start(Kind::BlockDownload, 20);
  owner.Play(kBlockDownloadSending);
  owner.Play({{RX, "A1"}});
  EXPECT_FALSE(owner.engine.finished);
  EXPECT_EQ(owner.AbortCode(), 0x05040001u);
  owner.Play({{RX, "A2 02"}, {TX, "81 0F 10 11 12 13 14"}});
}

// A short last segment leaves the position off the grid of seven; a server that goes on refusing must not
// drag it in front of the data.
TEST(SdoEngine, RewindsToTheStartOfTheDataAtMost) {
  Owner owner;
  owner.Start(Kind::BlockDownload, 10);
  owner.Play({{TX, "C6 00 20 01 0A"},
              {RX, "A4 00 20 01 01"},
              {TX, "01 01 02 03 04 05 06 07"},
              {RX, "A2 01"},
              {TX, "81 08 09 0A"}});
  for (int i = 0; i < 5; ++i) owner.Play({{RX, "A2 00"}, {TX, "01 01 02 03 04 05 06 07"}});
}

// What a transfer that broke off has left in the channel must not count in the next one.
TEST(SdoEngine, StartsFromNothingAfterATransferThatBrokeOff) {
  Owner owner;
  owner.Start(Kind::BlockUpload, 99);
  owner.Play(kBlockUploadSegments);
  owner.Feed("01");
  owner.Feed("09");
  owner.ExpectAbort(0x05040003);
  owner.Start(Kind::BlockUpload, 99);
  owner.Play(kBlockUploadSegments);
  owner.Play({{RX, "01"}, {RX, "82"}, {TX, "A2 02 04"}, {RX, "80 00 20 01"}});

  owner.Start(Kind::BlockDownload, 3);
  owner.Play(kBlockDownloadEnding);
  owner.Play({{RX, "80 00 20 01"}});
  owner.Start(Kind::BlockDownload, 20);
  owner.Play({{TX, "C6 00 20 01 14"},
              {RX, "A4 00 20 01 01"},
              {TX, "01 01 02 03 04 05 06 07"},
              {RX, "A2 01"},
              {TX, "01 08 09 0A 0B 0C 0D 0E"},
              {RX, "A2 00"},
              {TX, "01 08 09 0A 0B 0C 0D 0E"}});
}

TEST(SdoEngine, SpeaksWith29BitIdentifiers) {
  Owner owner;
  owner.buffer.resize(4);
  SdoRead(owner.engine, 5, 0x2000, 1, owner.buffer.data(), 4, 0x32345678, 0x2ABCDEF0, 0, 0);
  ASSERT_EQ(owner.sent.size(), 1u);
  EXPECT_EQ(owner.sent[0].identifier, 0x0ABCDEF0u);
  EXPECT_EQ(owner.sent[0].flags, 8u | NSdk::kFrameExtended);
  SdoFeed(owner.engine, Frame(0x12345678, "4F 00 20 01 01"));
  EXPECT_FALSE(owner.engine.finished) << "without the extended flag it is another COB-ID";
  SdoFeed(owner.engine, Frame(0x32345678, "4F 00 20 01 01"));
  EXPECT_TRUE(owner.engine.succeeded);
}

}  // namespace
}  // namespace NSdoTest
